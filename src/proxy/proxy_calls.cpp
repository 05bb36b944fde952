#include "proxy/proxy_calls.h"

#include "proxy/session/name_resolver.h"
#include "proxy/session/proxy_discovery.h"
#include "proxy/user/token_calls.h"

namespace vantor {

ProxyCalls WindowsProxyCalls()
{
    return {std::make_shared<WinHttpProxyDiscovery>(), std::make_shared<WindowsNameResolver>(),
            std::make_shared<WindowsTokenCalls>()};
}

} // namespace vantor
