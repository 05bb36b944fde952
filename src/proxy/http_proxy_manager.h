// Which way requests take: direct, through a named proxy, or through one found automatically.
#pragma once

#include "proxy/auth/proxy_host.h"
#include "proxy/session/http_session.h"
#include "proxy/user/user_impersonation.h"

#include <memory>
#include <string>

namespace vantor {

/// Owns one session of each kind and keeps the one in use; implements the one-shot fallback from a proxy to a direct
/// connection. Unconfigured until InitConfig. Used from one thread. Throws nothing of its own; failures are in its
/// results and the log, all at trace level. Does nothing when the call layer is null.
class CHTTPProxyManager {
public:
    CHTTPProxyManager(std::shared_ptr<IHTTP> http, ProxyCalls calls, std::shared_ptr<ILogger> logger,
                      std::wstring userAgent);
    CHTTPProxyManager(const CHTTPProxyManager&) = delete;
    CHTTPProxyManager& operator=(const CHTTPProxyManager&) = delete;

    /// Copies and logs the configuration (the password in clear), chooses the session and ends any fallback.
    void InitConfig(const ProxyConfig& config);

    /// Opens a WinHTTP session on the session in use; null on failure. See CHTTPSession::Open for the timeout.
    HINTERNET OpenSession(std::uint32_t* timeout);

    /// Prepares a request for one attempt; false on failure.
    bool InitRequest(HINTERNET session, HttpRequest& request, const std::wstring& url,
                     const ProxyAuthSchemePtr& scheme);

    /// Cleans up after the attempt; false on failure.
    bool CleanRequest(const ProxyAuthSchemePtr& scheme);

    /// Turns to the direct session and answers true, unless a fallback is in force, no proxy is in use, or the
    /// configuration does not allow it.
    bool ShouldFallBack();

    /// Ends a fallback: the proxy session is in use again. False when none was in force.
    bool ClearFallBack();

    bool ProxyFallbackIsConfigured() const;

    bool IsFallbackInForce() const { return m_savedSession != nullptr; }

    /// The impersonation for the current user's scheme; lives as long as the manager.
    UserImpersonation& Impersonator() { return m_impersonator; }

    const ProxyConfig& Config() const { return m_host.config; }

private:
    void LogConfig(const class OperationLog& log) const;

    ProxyHost m_host;
    std::shared_ptr<CHTTPSession> m_directSession;
    std::shared_ptr<CHTTPSession> m_namedProxySession;
    std::shared_ptr<CHTTPSession> m_autoProxySession;
    std::shared_ptr<CHTTPSession> m_currentSession; ///< one of the three; null while unconfigured
    std::shared_ptr<CHTTPSession> m_savedSession;   ///< the proxy session in use before a fallback
    UserImpersonation m_impersonator;
};

} // namespace vantor
