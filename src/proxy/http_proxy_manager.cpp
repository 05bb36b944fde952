#include "proxy/http_proxy_manager.h"

#include "platform/text.h"
#include "proxy/session/http_session_auto_proxy.h"
#include "proxy/session/http_session_named_proxy.h"

#include <utility>

namespace vantor {

CHTTPProxyManager::CHTTPProxyManager(std::shared_ptr<IHTTP> http, ProxyCalls calls, std::shared_ptr<ILogger> logger,
                                     std::wstring userAgent)
    : m_http(std::move(http)), m_calls(std::move(calls)), m_userAgent(std::move(userAgent)), m_logger(std::move(logger))
{
    if (m_logger) {
        m_logger->Log(LogLevel::trace, "CHTTPProxyManager::CHTTPProxyManager");
    }
    m_directSession = std::make_shared<CHTTPSession>(*this, m_logger);
    m_namedProxySession = std::make_shared<CHTTPSessionNamedProxy>(*this, m_logger);
    m_autoProxySession = std::make_shared<CHTTPSessionAutoProxy>(*this, m_logger);
    m_impersonator = std::make_unique<SessionImpersonator>(*m_autoProxySession);
}

CHTTPProxyManager::~CHTTPProxyManager() = default;

void CHTTPProxyManager::InitConfig(const ProxyConfig& config)
{
    const TracedOperation log(m_logger, "CHTTPProxyManager::InitConfig");
    m_config = config;
    if (UsesProxy(m_config) && m_config.m_repAuthSchemes.empty()) {
        log.Trace("Using Proxy authorization scheme none, no auth scheme configured.");
        m_config.m_repAuthSchemes.push_back(REP_PROXY_AUTH_SCHEME_NONE);
    }
    LogConfig(log);

    if (!m_config.m_address.empty()) {
        log.Trace("setting current session type to NamedSessionProxy");
        m_currentSession = m_namedProxySession;
    } else if (m_config.m_wpadFlags == 0) {
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
    std::string text = ToNarrow(m_config.m_address);
    text += " wpad flags: " + std::to_string(m_config.m_wpadFlags);
    text += " wpad detect flags: " + std::to_string(m_config.m_wpadDetectFlags);
    text += " wpad config url: " + ToNarrow(m_config.m_wpadConfigUrl);
    text += " wpad auto logon: " + std::string(m_config.m_wpadAutoLogon ? "true" : "false");
    text += " username: " + ToNarrow(m_config.m_username);
    text += " password: " + ToNarrow(m_config.m_password);
    text += " authentication schemes: ";
    for (const std::uint32_t scheme : m_config.m_repAuthSchemes) {
        text += std::to_string(scheme) + " ";
    }
    text += " user handle: " + PointerText(m_config.m_currentUser);
    text += " DNS server: " + ToNarrow(m_config.m_dnsServer);
    log.Trace(text);
}

HINTERNET CHTTPProxyManager::OpenSession(std::uint32_t* timeout)
{
    const TracedOperation log(m_logger, "CHTTPProxyManager::OpenSession");
    if (!m_currentSession) {
        log.Trace("Current session type is not valid.");
        return nullptr;
    }
    return m_http ? m_currentSession->Open(timeout, m_config.m_proxyTimeout) : nullptr;
}

DWORD CHTTPProxyManager::InitRequest(HINTERNET session, IProxiedRequest& request, const std::wstring& url,
                                     const ProxyAuthSchemePtr& scheme)
{
    const TracedOperation log(m_logger, "CHTTPProxyManager::InitRequest");
    return m_http && m_currentSession ? m_currentSession->InitRequest(session, request, url, scheme) : 0;
}

DWORD CHTTPProxyManager::CleanRequest(const ProxyAuthSchemePtr& scheme)
{
    const TracedOperation log(m_logger, "CHTTPProxyManager::CleanRequest");
    return m_http && m_currentSession ? m_currentSession->CleanRequest(scheme) : 0;
}

BOOL CHTTPProxyManager::SetCredentials(DWORD authScheme, IProxiedRequest& request)
{
    const TracedOperation log(m_logger, "CHTTPProxyManager::SetCredentials");
    log.Trace(" for proxy Auth Scheme = ");
    return request.SetCredentials(WINHTTP_AUTH_TARGET_PROXY, authScheme, m_config.m_username.c_str(),
                                  m_config.m_password.c_str());
}

bool CHTTPProxyManager::ShouldFallBack()
{
    const TracedOperation log(m_logger, "CHTTPProxyManager::ShouldFallBack");
    if (m_savedSession) {
        log.Trace("false, non-null sessionPtr value do not fall back.");
        return false;
    }
    if (!UsesProxy(m_config)) {
        log.Trace("false, configuration doesn't support proxy.");
        return false;
    }
    if (!m_config.m_proxyTimeoutFallbackToDirect) {
        log.Trace("false, fallback configured to direct."); // it is not; the words are old, support knows them
        return false;
    }
    m_savedSession = std::exchange(m_currentSession, m_directSession);
    return true;
}

bool CHTTPProxyManager::ClearFallBack()
{
    const TracedOperation log(m_logger, "CHTTPProxyManager::ClearFallBack");
    if (!m_savedSession) {
        return false;
    }
    m_currentSession = std::exchange(m_savedSession, nullptr);
    return true;
}

bool CHTTPProxyManager::ProxyFallbackIsConfigured() const
{
    const TracedOperation log(m_logger, "CHTTPProxyManager::ProxyFallbackIsConfigured");
    return m_config.m_proxyTimeoutFallbackToDirect;
}

} // namespace vantor
