// The Windows calls of the proxy code that are not part of the HTTP call layer.
#pragma once

#include <memory>

namespace vantor {

class INameResolver;
class IProxyDiscovery;
class ITokenCalls;

/// One narrow interface for each concern. None is empty while there is a call layer.
struct ProxyCalls {
    std::shared_ptr<IProxyDiscovery> discovery;
    std::shared_ptr<INameResolver> resolver;
    std::shared_ptr<ITokenCalls> tokens;
};

/// Those that ask Windows.
ProxyCalls WindowsProxyCalls();

} // namespace vantor
