// The Windows calls of the proxy code that are not part of IHTTP.
#pragma once

#include <memory>

namespace vantor {

class INameResolver;
class IProxyDiscovery;
class ITokenCalls;

/// One narrow interface per concern. All are set if the IHTTP pointer beside them is.
struct ProxyCalls {
    std::shared_ptr<IProxyDiscovery> discovery;
    std::shared_ptr<INameResolver> resolver;
    std::shared_ptr<ITokenCalls> tokens;
};

/// The implementations that call Windows.
ProxyCalls WindowsProxyCalls();

} // namespace vantor
