#include "proxy/calls/proxy_calls.h"

#include "proxy/calls/name_resolver.h"
#include "proxy/calls/proxy_discovery.h"
#include "proxy/calls/token_calls.h"

namespace vantor {

ProxyCalls WindowsProxyCalls()
{
    return {std::make_shared<WinHttpProxyDiscovery>(), std::make_shared<WindowsNameResolver>(),
            std::make_shared<WindowsTokenCalls>()};
}

} // namespace vantor
