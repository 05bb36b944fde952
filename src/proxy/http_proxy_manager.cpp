#include "proxy/http_proxy_manager.h"

#include "platform/text/encoding.h"
#include "proxy/session/http_session_auto_proxy.h"
#include "proxy/session/http_session_named_proxy.h"
#include "run/log/log_texts.h"

#include <utility>

namespace vantor {

CHTTPProxyManager::CHTTPProxyManager(std::shared_ptr<IHTTP> http, ProxyCalls calls, std::shared_ptr<ILogger> logger,
                                     std::wstring userAgent)
    : m_host{std::move(http), std::move(calls), std::move(logger), std::move(userAgent)},
      m_impersonator(m_host.calls.tokens, m_host.logger)
{
    if (m_host.logger) {
        m_host.logger->Log(LogLevel::trace, "CHTTPProxyManager::CHTTPProxyManager");
    }
    m_directSession = std::make_shared<CHTTPSession>(m_host);
    m_namedProxySession = std::make_shared<CHTTPSessionNamedProxy>(m_host);
    m_autoProxySession = std::make_shared<CHTTPSessionAutoProxy>(m_host);
}

void CHTTPProxyManager::InitConfig(const ProxyConfig& config)
{
    const TracedOperation log(m_host.logger, "CHTTPProxyManager::InitConfig");
    m_host.config = config;
    if (UsesProxy(m_host.config) && m_host.config.m_repAuthSchemes.empty()) {
        log.Trace("Using Proxy authorization scheme none, no auth scheme configured.");
        m_host.config.m_repAuthSchemes.push_back(REP_PROXY_AUTH_SCHEME_NONE);
    }
    LogConfig(log);

    if (!m_host.config.m_address.empty()) {
        log.Trace(texts::kSessionTypeToNamedSessionProxy);
        m_currentSession = m_namedProxySession;
    } else if (m_host.config.m_wpadFlags == 0) {
        log.Trace("setting current session type to DirectSession");
        m_currentSession = m_directSession;
    } else {
        log.Trace("setting current session type to AutoSessionProxy");
        m_currentSession = m_autoProxySession;
    }
    m_savedSession = nullptr;
}

void CHTTPProxyManager::LogConfig(const OperationLog& log) const
{
    std::string text = ToNarrow(m_host.config.m_address);
    text += " wpad flags: " + std::to_string(m_host.config.m_wpadFlags);
    text += " wpad detect flags: " + std::to_string(m_host.config.m_wpadDetectFlags);
    text += " wpad config url: " + ToNarrow(m_host.config.m_wpadConfigUrl);
    text += " wpad auto logon: " + std::string(m_host.config.m_wpadAutoLogon ? "true" : "false");
    text += " username: " + ToNarrow(m_host.config.m_username);
    text += texts::kPassword + ToNarrow(m_host.config.m_password);
    text += texts::kAuthenticationSchemes;
    for (const std::uint32_t scheme : m_host.config.m_repAuthSchemes) {
        text += std::to_string(scheme) + " ";
    }
    text += " user handle: " + PointerText(m_host.config.m_currentUser);
    text += " DNS server: " + ToNarrow(m_host.config.m_dnsServer);
    log.Trace(text);
}

HINTERNET CHTTPProxyManager::OpenSession(std::uint32_t* timeout)
{
    const TracedOperation log(m_host.logger, "CHTTPProxyManager::OpenSession");
    if (!m_currentSession) {
        log.Trace("Current session type is not valid.");
        return nullptr;
    }
    return m_host.http ? m_currentSession->Open(timeout, m_host.config.m_proxyTimeout) : nullptr;
}

bool CHTTPProxyManager::InitRequest(HINTERNET session, HttpRequest& request, const std::wstring& url,
                                    const ProxyAuthSchemePtr& scheme)
{
    const TracedOperation log(m_host.logger, texts::kProxyManagerInitRequest);
    return m_host.http && m_currentSession && m_currentSession->InitRequest(session, request, url, scheme);
}

bool CHTTPProxyManager::CleanRequest(const ProxyAuthSchemePtr& scheme)
{
    const TracedOperation log(m_host.logger, "CHTTPProxyManager::CleanRequest");
    return m_host.http && m_currentSession && m_currentSession->CleanRequest(scheme);
}

bool CHTTPProxyManager::ShouldFallBack()
{
    const TracedOperation log(m_host.logger, "CHTTPProxyManager::ShouldFallBack");
    if (m_savedSession) {
        log.Trace("false, non-null sessionPtr value do not fall back.");
        return false;
    }
    if (!UsesProxy(m_host.config)) {
        log.Trace("false, configuration doesn't support proxy.");
        return false;
    }
    if (!m_host.config.m_proxyTimeoutFallbackToDirect) {
        log.Trace("false, fallback configured to direct."); // misleading (it is not), but support knows the text
        return false;
    }
    m_savedSession = std::exchange(m_currentSession, m_directSession);
    return true;
}

bool CHTTPProxyManager::ClearFallBack()
{
    const TracedOperation log(m_host.logger, "CHTTPProxyManager::ClearFallBack");
    if (!m_savedSession) {
        return false;
    }
    m_currentSession = std::exchange(m_savedSession, nullptr);
    return true;
}

bool CHTTPProxyManager::ProxyFallbackIsConfigured() const
{
    const TracedOperation log(m_host.logger, "CHTTPProxyManager::ProxyFallbackIsConfigured");
    return m_host.config.m_proxyTimeoutFallbackToDirect;
}

} // namespace vantor
