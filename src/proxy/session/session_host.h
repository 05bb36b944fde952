// What sessions need of the proxy manager that owns them.
#pragma once

#include "proxy/auth/proxy_auth_host.h"
#include "telemetry/winhttp/http_interface.h"

#include <string>

namespace vantor {

class INameResolver;
class IProxyDiscovery;
class ITokenCalls;

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
