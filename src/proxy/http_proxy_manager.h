// Chooses how requests are sent: directly, through a named proxy, or through one found automatically.
#pragma once

#include "proxy/auth/proxy_host.h"
#include "proxy/session/http_session.h"
#include "proxy/user/user_impersonation.h"

#include <memory>
#include <string>

namespace vantor {

/// Owns one session of each kind, selects the one in use, and implements the one-time fallback from a proxy to a direct
/// connection. Call InitConfig first, and use it from one thread. Throws no exceptions of its own: failures are
/// returned, and logged at trace level. Does nothing if http is null.
class CHTTPProxyManager {
public:
    CHTTPProxyManager(std::shared_ptr<IHTTP> http, ProxyCalls calls, std::shared_ptr<ILogger> logger,
                      std::wstring userAgent);
    CHTTPProxyManager(const CHTTPProxyManager&) = delete;
    CHTTPProxyManager& operator=(const CHTTPProxyManager&) = delete;

    /// Copies and logs the configuration (including the password in clear text), selects the session and ends any
    /// fallback.
    void InitConfig(const ProxyConfig& config);

    /// Opens a WinHTTP session of the kind in use; null on failure. See CHTTPSession::Open for the timeout.
    HINTERNET OpenSession(std::uint32_t* timeout);

    /// Prepares a request for one attempt; false on failure.
    bool InitRequest(HINTERNET session, HttpRequest& request, const std::wstring& url,
                     const ProxyAuthSchemePtr& scheme);

    /// Cleans up after the attempt; false on failure.
    bool CleanRequest(const ProxyAuthSchemePtr& scheme);

    /// Switches to the direct session and returns true, unless a fallback is already active, no proxy is in use, or the
    /// configuration does not allow it.
    bool ShouldFallBack();

    /// Ends a fallback by switching back to the proxy session. False if none was active.
    bool ClearFallBack();

    bool ProxyFallbackIsConfigured() const;

    bool IsFallbackInForce() const { return m_savedSession != nullptr; }

    /// The impersonation for the current-user scheme; lives as long as the manager.
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
