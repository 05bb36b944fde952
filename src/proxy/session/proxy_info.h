// Asking WinHTTP for the proxy of a URL.
#pragma once

#include "platform/owner.h"
#include "proxy/calls/proxy_discovery.h"

#include <string>

namespace vantor {

/// WINHTTP_PROXY_INFO that owns its strings; direct access by default.
struct ProxyInfo {
    DWORD accessType = WINHTTP_ACCESS_TYPE_NO_PROXY;
    GlobalText proxy;
    GlobalText bypass;
};

/// Result of looking for a proxy.
struct ProxyAnswer {
    DWORD error = ERROR_SUCCESS; ///< why none was found; 0 if one was
    ProxyInfo info = {};
};

/// A copy with strings of its own. Throws std::bad_alloc.
ProxyInfo Copy(const ProxyInfo& info);

/// The text for the log, or "<null>".
std::string TextOrNull(const GlobalText& text);

/// WinHttpGetProxyForUrl. Scripts run outside this process, because they come from whoever answers the search for them;
/// a version of Windows that does not support this runs them inside.
ProxyAnswer GetProxyForUrl(IProxyDiscovery& discovery, HINTERNET session, const std::wstring& url,
                           const WINHTTP_AUTOPROXY_OPTIONS& options);

} // namespace vantor
