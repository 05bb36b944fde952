#include "proxy/calls/proxy_discovery.h"

#include "platform/modules/winhttp.h"

namespace vantor {

BOOL WinHttpProxyDiscovery::GetProxyForUrl(HINTERNET session, const wchar_t* url, WINHTTP_AUTOPROXY_OPTIONS& options,
                                           WINHTTP_PROXY_INFO& info)
{
    return winhttp::WinHttpGetProxyForUrl(session, url, &options, &info);
}

BOOL WinHttpProxyDiscovery::GetUserProxyConfig(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG& config)
{
    return winhttp::WinHttpGetIEProxyConfigForCurrentUser(&config);
}

BOOL WinHttpProxyDiscovery::GetDefaultProxyConfiguration(WINHTTP_PROXY_INFO& info)
{
    return winhttp::WinHttpGetDefaultProxyConfiguration(&info);
}

std::uint64_t WinHttpProxyDiscovery::TickCount()
{
    return ::GetTickCount64();
}

} // namespace vantor
