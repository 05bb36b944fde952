#include "proxy/proxy_calls.h"

#include "proxy/name_resolver.h"
#include "proxy/proxy_discovery.h"
#include "proxy/token_calls.h"

namespace vantor {

ProxyCalls WindowsProxyCalls()
{
    return {std::make_shared<WinHttpProxyDiscovery>(), std::make_shared<WindowsNameResolver>(),
            std::make_shared<WindowsTokenCalls>()};
}

} // namespace vantor
