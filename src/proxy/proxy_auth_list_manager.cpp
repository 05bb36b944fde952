#include "proxy/proxy_auth_list_manager.h"

#include "proxy/auth/proxy_auth_user.h"
#include "proxy/auth/scheme_choice.h"
#include "run/log/operation_log.h"

#include <algorithm>
#include <utility>

namespace vantor {

C_HTTPProxyAuthListManager::C_HTTPProxyAuthListManager(CHTTPProxyManager& manager, std::shared_ptr<ILogger> logger)
    : m_manager(manager), m_configured(manager.Config().m_repAuthSchemes), m_logger(std::move(logger))
{
    if (m_logger) {
        m_logger->Log(LogLevel::trace, "C_HTTPProxyAuthListManager::C_HTTPProxyAuthListManager");
    }
    m_schemes[REP_PROXY_AUTH_SCHEME_NONE] = std::make_shared<CHTTPProxyAuthNone>(m_logger);
    m_schemes[REP_PROXY_AUTH_SCHEME_BASIC] = std::make_shared<CHTTPProxyAuthBasic>(m_logger);
    m_schemes[REP_PROXY_AUTH_SCHEME_CURRENT_USER] =
        std::make_shared<CHTTPProxyAuthUser>(m_logger, &m_manager.Impersonator());
    m_schemes[REP_PROXY_AUTH_SCHEME_NTLM] = std::make_shared<CHTTPProxyAuthNTLM>(m_logger);
    m_schemes[REP_PROXY_AUTH_SCHEME_KERBEROS] = std::make_shared<CHTTPProxyAuthKerberos>(m_logger);
    if (!m_manager.IsFallbackInForce()) {
        m_queue = FirstSchemes(m_configured);
    }
}

bool C_HTTPProxyAuthListManager::InitRequest(HINTERNET session, HttpRequest& request, const std::wstring& url)
{
    m_inUse = nullptr;
    if (m_queue.empty()) {
        OperationLog(m_logger, "C_HTTPProxyAuthListManager::InitRequest").Trace("No rep authentication configured.");
    } else {
        const std::uint32_t value = m_queue.front();
        m_queue.pop_front();
        m_tried.insert(value);
        m_inUse = LookUpAuthenticationSchemeByRepAuthenticationScheme(value);
    }
    return m_manager.InitRequest(session, request, url, m_inUse);
}

bool C_HTTPProxyAuthListManager::CleanRequest()
{
    if (!m_inUse) {
        return false;
    }
    return m_manager.CleanRequest(std::exchange(m_inUse, nullptr));
}

void C_HTTPProxyAuthListManager::FindNextAuthenticationScheme(HttpRequest& request)
{
    const OperationLog log(m_logger, "C_HTTPProxyAuthListManager::FindNextAuthenticationScheme");
    if (m_configured.size() == 1) {
        log.Trace("Only one authentication scheme configured which we have already tried.");
        return;
    }
    DWORD status = 0;
    if (request.ReportedError() != 0 || request.QueryStatusCode(status) != 0 || status != HTTP_STATUS_PROXY_AUTH_REQ) {
        log.Trace("QueryHeader() Failure = " + std::to_string(status) + ", clearing all rep authentication schemas.");
        m_queue.clear();
        return;
    }
    log.Trace("The proxy requires authentication, querying proxy server for supported MS authentication schemes.");
    if (m_proxyQueried) {
        log.Trace("Proxy server already queried for supported MS authentication scheme.");
        return;
    }
    m_proxyQueried = true;
    QueryProxy(request, log);
}

void C_HTTPProxyAuthListManager::QueryProxy(HttpRequest& request, const OperationLog& log)
{
    DWORD supported = 0;
    DWORD first = 0;
    DWORD target = 0;
    if (!request.QueryAuthSchemes(supported, first, target)) {
        log.Trace("QueryAuthSchemes() failed, err=" + std::to_string(::GetLastError()));
        return;
    }
    log.Trace("The proxy server returned, supported authentication schemes = " + std::to_string(supported) +
              ". First authentication scheme listed by the server = " + std::to_string(first) +
              ". Authentication target = " + std::to_string(target));
    MatchMsAuthenticationSchemes(supported);
}

bool C_HTTPProxyAuthListManager::WantsAnotherAttempt()
{
    while (!m_queue.empty() && m_tried.contains(m_queue.front())) {
        m_queue.pop_front();
    }
    return !m_queue.empty();
}

ProxyAuthSchemePtr C_HTTPProxyAuthListManager::LookUpAuthenticationSchemeByRepAuthenticationScheme(
    std::uint32_t value) const
{
    if (value < m_schemes.size()) {
        return m_schemes[value];
    }
    OperationLog(m_logger, "C_HTTPProxyAuthListManager::LookUpAuthenticationSchemeByRepAuthenticationScheme")
        .Trace("Rep auth scheme is " + std::to_string(value));
    return nullptr;
}

void C_HTTPProxyAuthListManager::MatchMsAuthenticationSchemes(DWORD mask)
{
    const OperationLog log(m_logger, "C_HTTPProxyAuthListManager::MatchMsAuthenticationSchemes");
    for (const auto& [offered, value, isMatch] : MatchSchemes(m_configured, mask)) {
        LookUpAuthenticationSchemeByRepAuthenticationScheme(value); // logs an unknown one
        if (isMatch) {
            m_queue.push_back(value);
            log.Trace(" use rep-authentication scheme = " + std::to_string(value));
        } else {
            log.Trace("MSAuthScheme=" + std::to_string(offered) + " RepAuthScheme=" + std::to_string(value) +
                      " do not match");
        }
    }
}

} // namespace vantor
