// wintrust.dll: file signatures.
#pragma once

#include "platform/modules/module.h"

#include <windows.h>

#include <wincrypt.h> // wintrust.h wants it first
#include <wintrust.h>

namespace vantor::wintrust {

inline constinit SystemModule module(L"wintrust.dll");

inline ModuleFunction<decltype(::WinVerifyTrust)> WinVerifyTrust(module, "WinVerifyTrust");
inline ModuleFunction<decltype(::WTHelperProvDataFromStateData)> WTHelperProvDataFromStateData(
    module, "WTHelperProvDataFromStateData");
inline ModuleFunction<decltype(::WTHelperGetProvSignerFromChain)> WTHelperGetProvSignerFromChain(
    module, "WTHelperGetProvSignerFromChain");
inline ModuleFunction<decltype(::WTHelperGetProvCertFromChain)> WTHelperGetProvCertFromChain(
    module, "WTHelperGetProvCertFromChain");

} // namespace vantor::wintrust
