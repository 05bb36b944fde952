// How the proxy options become what WinHTTP is given.
#pragma once

#include "run/config/run_config.h"

#include <string>

namespace vantor {

/// True when a proxy was named: both a server and a port.
bool HasExplicitProxy(const RunConfig& config);

/// The proxy's address "SERVER:PORT". A server with ":" is an IPv6 literal and is written in brackets; one typed with
/// a scheme stays as typed.
std::string ProxyAddress(const RunConfig& config);

/// The name to log on with at the proxy: the user name, or the principal when there is none. A domain is joined as
/// "DOMAIN\name" unless the name carries one already ("\" or "@").
std::string ProxyUserName(const RunConfig& config);

} // namespace vantor
