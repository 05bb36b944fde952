// The session that finds the proxy for each request's URL.
#pragma once

#include "proxy/session/http_session.h"
#include "proxy/session/system_proxy.h"

#include <string>

namespace vantor {

/// Opens like the direct session. Before each request it asks WinHTTP for the URL's proxy (WPAD or an auto-config
/// script), then for the system's own settings, and sets the result on the request.
class CHTTPSessionAutoProxy : public CHTTPSessionProxy {
public:
    explicit CHTTPSessionAutoProxy(const ProxyHost& host);

    bool InitRequest(HINTERNET session, HttpRequest& request, const std::wstring& url,
                     const ProxyAuthSchemePtr& scheme) override;
    bool CleanRequest(const ProxyAuthSchemePtr& scheme) override;

private:
    /// Finds the proxy for the URL and sets it on the request, or direct access if there is none.
    bool InitProxy(HINTERNET session, HttpRequest& request, const std::wstring& url);

    /// The proxy for the URL, or direct access; logs why WinHTTP found none.
    ProxyInfo FindProxy(HINTERNET session, const std::wstring& url, const OperationLog& log);

    SystemProxy m_system;
};

} // namespace vantor
