// What authentication schemes need of the proxy manager that owns them.
#pragma once

#include "proxy/auth/proxied_request.h"
#include "proxy/config/proxy_config.h"

namespace vantor {

/// The manager as its schemes see it.
class IProxyAuthHost {
public:
    virtual ~IProxyAuthHost() = default;

    virtual const ProxyConfig& Config() const = 0;

    /// Sets the configured proxy user name and password on the request for one WinHTTP authentication scheme.
    virtual BOOL SetCredentials(DWORD authScheme, IProxiedRequest& request) = 0;
};

} // namespace vantor
