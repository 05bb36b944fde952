#include "proxy/session/system_proxy.h"

#include "platform/last_error.h"
#include "proxy/calls/proxy_discovery.h"
#include "proxy/user/user_impersonation.h"
#include "telemetry/winhttp/code_names.h"

#include <utility>

namespace vantor {
namespace {

bool IsGiven(const GlobalText& text)
{
    return text && *text.Get() != L'\0';
}

void LogFailedDiscovery(const OperationLog& log)
{
    log.Trace("Setting m_systemProxyDiscoverySucceeded = false"); // an old name that support knows
}

} // namespace

std::optional<ProxyInfo> SystemProxy::TrySystemProxyInfo(HINTERNET session, const std::wstring& url)
{
    const OperationLog log = Log("CHTTPSessionAutoProxy::TrySystemProxyInfo");
    if (!m_host.config.m_systemProxyDiscovery) {
        log.Trace("System proxy discovery not configured");
        return std::nullopt;
    }

    const std::lock_guard lock(m_mutex);
    const std::uint32_t lifeTime = m_host.config.m_systemProxyLifeTime;
    const std::uint64_t now = m_host.calls.discovery->TickCount();
    const bool isKnown = m_systemProxyDiscoveryTime != 0;
    if (isKnown && now - m_systemProxyDiscoveryTime <= lifeTime) {
        log.Trace(m_systemProxy ? "System proxy discovered previously" : "System proxy discovery failed previously");
    } else {
        if (isKnown) {
            log.Trace("proxyConfig.m_systemProxyLifeTime expired " + std::to_string(lifeTime));
        }
        m_systemProxyDiscoveryTime = now;
        m_systemProxy.reset(); // not left outdated if Discover throws
        m_systemProxy = Discover(session, url, log);
    }
    return m_systemProxy ? std::optional(Copy(*m_systemProxy)) : std::nullopt;
}

std::optional<ProxyInfo> SystemProxy::Discover(HINTERNET session, const std::wstring& url, const OperationLog& log)
{
    ProxyAnswer user = TryCurrentUserProxyConfig(session, url);
    if (user.error == ERROR_SUCCESS) {
        return std::move(user.info);
    }
    log.Trace("Failed to retrieve current user proxy config : " + WinHttpErrorName(user.error));
    log.Trace("Attempting default proxy configuration.");
    return TrySystemWideProxyConfig();
}

ProxyAnswer SystemProxy::TryCurrentUserProxyConfig(HINTERNET session, const std::wstring& url)
{
    const OperationLog log = Log("CHTTPSessionAutoProxy::TryCurrentUserProxyConfig");
    IProxyDiscovery& discovery = *m_host.calls.discovery;
    log.Trace("Attempting discovery. Impersonating user.");
    UserImpersonation user(m_host.calls.tokens, m_host.logger);
    if (!user.Impersonate(m_host.config.m_currentUser)) {
        return {LastErrorOr(ERROR_CANNOT_IMPERSONATE)};
    }

    WINHTTP_CURRENT_USER_IE_PROXY_CONFIG settings{};
    if (!discovery.GetUserProxyConfig(settings)) {
        return {LastErrorOr(ERROR_WINHTTP_INTERNAL_ERROR)};
    }
    const GlobalText script(settings.lpszAutoConfigUrl);
    GlobalText proxy(settings.lpszProxy);
    GlobalText bypass(settings.lpszProxyBypass);
    log.Trace("User proxy configuration succeeded.");

    if (IsGiven(script)) {
        log.Trace("User proxy config: Use pac file " + TextOrNull(script));
        WINHTTP_AUTOPROXY_OPTIONS options{};
        options.dwFlags = WINHTTP_AUTOPROXY_CONFIG_URL;
        options.lpszAutoConfigUrl = script.Get();
        options.fAutoLogonIfChallenged = m_host.config.m_wpadAutoLogon;
        ProxyAnswer answer = GetProxyForUrl(discovery, session, url, options);
        log.Trace(answer.error == ERROR_SUCCESS ? "WinHttpgetProxyForUrl succeeded."
                                                : "WinHttpGetProxyForUrl failed: " + WinHttpErrorName(answer.error));
        return answer;
    }
    if (IsGiven(proxy)) {
        log.Trace("Using named proxy succeeded.");
        return {ERROR_SUCCESS, {WINHTTP_ACCESS_TYPE_NAMED_PROXY, std::move(proxy), std::move(bypass)}};
    }
    log.Trace("No pac file nor proxy found");
    LogFailedDiscovery(log);
    return {ERROR_FILE_NOT_FOUND}; // WinHTTP's error for a user without any settings
}

std::optional<ProxyInfo> SystemProxy::TrySystemWideProxyConfig()
{
    const OperationLog log = Log("CHTTPSessionAutoProxy::TrySystemWideProxyConfig");
    WINHTTP_PROXY_INFO answer{};
    if (!m_host.calls.discovery->GetDefaultProxyConfiguration(answer)) {
        log.Trace("WinHttpGetDefaultProxyConfiguration failed: " + WinHttpErrorName(::GetLastError()));
        LogFailedDiscovery(log);
        return std::nullopt;
    }
    ProxyInfo found{answer.dwAccessType, GlobalText(answer.lpszProxy), GlobalText(answer.lpszProxyBypass)};
    log.Trace("Default proxy configuration succeeded.");
    if (found.accessType == WINHTTP_ACCESS_TYPE_NO_PROXY) {
        log.Trace("Default proxy configuration is access type no proxy.");
        LogFailedDiscovery(log);
        return std::nullopt;
    }
    return found;
}

} // namespace vantor
