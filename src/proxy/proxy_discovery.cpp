#include "proxy/proxy_discovery.h"

namespace vantor {

BOOL WinHttpProxyDiscovery::GetProxyForUrl(HINTERNET session, const wchar_t* url, WINHTTP_AUTOPROXY_OPTIONS& options,
                                           WINHTTP_PROXY_INFO& info)
{
    return ::WinHttpGetProxyForUrl(session, url, &options, &info);
}

} // namespace vantor
