// The session that finds the proxy for each request's URL.
#pragma once

#include "proxy/http_session.h"

namespace vantor {

/// Opens like the direct session; before each request it asks WinHTTP for the URL's proxy (WPAD or an auto-config
/// script) and sets it on the request.
class CHTTPSessionAutoProxy : public CHTTPSessionProxy {
public:
    CHTTPSessionAutoProxy(ISessionHost& host, std::shared_ptr<ILogger> logger);

    DWORD InitRequest(HINTERNET session, IProxiedRequest& request, const std::wstring& url,
                      const ProxyAuthSchemePtr& scheme) override;
    DWORD CleanRequest(const ProxyAuthSchemePtr& scheme) override;

private:
    struct ProxyInfo;

    /// Finds the proxy for the URL and sets it on the request; where none is found, direct access. Non-zero for
    /// success.
    DWORD InitProxy(HINTERNET session, IProxiedRequest& request, const std::wstring& url);

    /// Asks the system's own proxy settings when automatic detection found nothing.
    bool TrySystemProxyInfo(ProxyInfo& info);
};

} // namespace vantor
