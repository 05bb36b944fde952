// dnsapi.dll: name resolution.
#pragma once

#include "platform/modules/module.h"

#include <windows.h>

#include <windns.h>

namespace vantor::dnsapi {

inline constinit SystemModule module(L"dnsapi.dll");

inline ModuleFunction<decltype(::DnsFree)> DnsFree(module, "DnsFree");
inline ModuleFunction<decltype(::DnsQuery_W)> DnsQuery_W(module, "DnsQuery_W");

} // namespace vantor::dnsapi
