// Translates the proxy options into WinHTTP's terms.
#pragma once

#include "run/config/run_config.h"

#include <string>

namespace vantor {

/// Whether the options name a proxy, with both server and port.
bool HasExplicitProxy(const RunConfig& config);

/// The proxy's address, "SERVER:PORT". A server that contains ":" is an IPv6 literal and is put in brackets, unless it
/// was given with a scheme or brackets.
std::string ProxyAddress(const RunConfig& config);

/// The user name for the proxy, or the principal if there is none. A domain is prepended, "DOMAIN\name", unless the
/// name already contains one ("\" or "@").
std::string ProxyUserName(const RunConfig& config);

} // namespace vantor
