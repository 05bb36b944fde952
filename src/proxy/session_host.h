// What sessions and authentication schemes need of the proxy manager that owns them.
#pragma once

#include "proxy/proxied_request.h"
#include "proxy/proxy_config.h"
#include "telemetry/http_interface.h"

#include <string>

namespace vantor {

class INameResolver;
class IProxyDiscovery;
class ITokenCalls;

/// The manager as its schemes see it.
class IProxyAuthHost {
public:
    virtual ~IProxyAuthHost() = default;

    virtual const ProxyConfig& Config() const = 0;

    /// Sets the configured proxy user name and password on the request for one WinHTTP authentication scheme.
    virtual BOOL SetCredentials(DWORD authScheme, IProxiedRequest& request) = 0;
};

/// The manager as its sessions see it. They are used only while a call layer is there.
class ISessionHost : public IProxyAuthHost {
public:
    virtual IHTTP& Http() const = 0;
    virtual IProxyDiscovery& Discovery() const = 0;
    virtual INameResolver& Resolver() const = 0;
    virtual ITokenCalls& Tokens() const = 0;
    virtual const std::wstring& UserAgent() const = 0;
};

} // namespace vantor
