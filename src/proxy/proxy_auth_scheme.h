// The ways in which a request authenticates to a proxy.
#pragma once

#include "proxy/session_host.h"
#include "run/logger.h"

#include <memory>

namespace vantor {

/// Base of all schemes. As it stands it sets nothing on the request.
class CHTTPProxyAuthScheme {
public:
    /// msScheme is the WINHTTP_AUTH_SCHEME_ value that the scheme stands for; 0: none.
    CHTTPProxyAuthScheme(std::shared_ptr<ILogger> logger, DWORD msScheme);
    virtual ~CHTTPProxyAuthScheme() = default;

    /// Prepares the request for one attempt; non-zero for success.
    virtual DWORD InitRequest(IProxyAuthHost& host, IProxiedRequest& request);

    /// Undoes what InitRequest did to the thread; non-zero for success.
    virtual DWORD CleanRequest();

    DWORD MsScheme() const { return m_msScheme; }

protected:
    const std::shared_ptr<ILogger>& Logger() const { return m_logger; }

private:
    std::shared_ptr<ILogger> m_logger;
    DWORD m_msScheme;
};

/// No authentication: REP_PROXY_AUTH_SCHEME_NONE.
class CHTTPProxyAuthNone : public CHTTPProxyAuthScheme {
public:
    explicit CHTTPProxyAuthNone(std::shared_ptr<ILogger> logger);
};

} // namespace vantor
