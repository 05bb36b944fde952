// What WinHTTP says of the proxy for a URL.
#pragma once

#include "platform/owner.h"
#include "proxy/calls/proxy_discovery.h"

#include <string>

namespace vantor {

/// WINHTTP_PROXY_INFO with owners for its strings; direct access unless it is filled.
struct ProxyInfo {
    DWORD accessType = WINHTTP_ACCESS_TYPE_NO_PROXY;
    GlobalText proxy;
    GlobalText bypass;
};

/// A proxy that was looked for.
struct ProxyAnswer {
    DWORD error = ERROR_SUCCESS; ///< why none was found
    ProxyInfo info = {};
};

/// Throws std::bad_alloc.
ProxyInfo Copy(const ProxyInfo& info);

/// The text for the log, "<null>" for none.
std::string TextOrNull(const GlobalText& text);

/// WinHttpGetProxyForUrl, with scripts run outside this process, since whoever answers the search for them may have
/// written them; where this Windows does not know that, inside.
ProxyAnswer GetProxyForUrl(IProxyDiscovery& discovery, HINTERNET session, const std::wstring& url,
                           const WINHTTP_AUTOPROXY_OPTIONS& options);

} // namespace vantor
