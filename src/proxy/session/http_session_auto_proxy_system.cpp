// The part of CHTTPSessionAutoProxy that asks for the system's own proxy settings.
#include "proxy/session/http_session_auto_proxy.h"

#include "platform/last_error.h"
#include "platform/text.h"
#include "proxy/session/proxy_discovery.h"
#include "proxy/session/session_impersonator.h"
#include "telemetry/winhttp/code_names.h"

#include <cwchar>
#include <new>

namespace vantor {
namespace {

/// WINHTTP_CURRENT_USER_IE_PROXY_CONFIG's strings with owners.
struct UserSettings {
    GlobalText scriptUrl;
    GlobalText proxy;
    GlobalText bypass;
};

bool IsGiven(const GlobalText& text)
{
    return text && *text.Get() != L'\0';
}

/// Throws std::bad_alloc.
GlobalText Copy(const GlobalText& text)
{
    if (!text) {
        return {};
    }
    const std::size_t bytes = (std::wcslen(text.Get()) + 1) * sizeof(wchar_t);
    GlobalText copy(static_cast<LPWSTR>(::GlobalAlloc(GMEM_FIXED, bytes)));
    if (!copy) {
        throw std::bad_alloc();
    }
    std::wmemcpy(copy.Get(), text.Get(), bytes / sizeof(wchar_t));
    return copy;
}

} // namespace

bool CHTTPSessionAutoProxy::TrySystemProxyInfo(HINTERNET session, const std::wstring& url, ProxyInfo& info)
{
    const OperationLog log = Log("CHTTPSessionAutoProxy::TrySystemProxyInfo");
    const ProxyConfig& config = Host().Config();
    if (!config.m_systemProxyDiscovery) {
        log.Trace("System proxy discovery not configured");
        return false;
    }

    const std::lock_guard lock(m_mutex);
    const std::uint64_t now = Host().Discovery().TickCount();
    if (m_systemProxyDiscoveryTime != 0) {
        if (now - m_systemProxyDiscoveryTime <= config.m_systemProxyLifeTime) {
            if (!m_systemProxyDiscoverySucceeded) {
                log.Trace("System proxy discovery failed previously");
                return false;
            }
            log.Trace("System proxy discovered previously");
            info = {m_systemProxy.accessType, Copy(m_systemProxy.proxy), Copy(m_systemProxy.bypass)};
            return true;
        }
        log.Trace("proxyConfig.m_systemProxyLifeTime expired " + std::to_string(config.m_systemProxyLifeTime));
    }

    m_systemProxyDiscoveryTime = now;
    m_systemProxyDiscoverySucceeded = false; // should memory run out on the way
    if (const DWORD error = TryCurrentUserProxyConfig(session, url, info); error != ERROR_SUCCESS) {
        log.Trace("Failed to retrieve current user proxy config : " + WinHttpErrorName(error));
        log.Trace("Attempting default proxy configuration.");
        TrySystemWideProxyConfig(info);
    }
    if (m_systemProxyDiscoverySucceeded) {
        m_systemProxy = {info.accessType, Copy(info.proxy), Copy(info.bypass)};
    }
    return m_systemProxyDiscoverySucceeded;
}

DWORD CHTTPSessionAutoProxy::TryCurrentUserProxyConfig(HINTERNET session, const std::wstring& url, ProxyInfo& info)
{
    const OperationLog log = Log("CHTTPSessionAutoProxy::TryCurrentUserProxyConfig");
    const ProxyConfig& config = Host().Config();
    log.Trace("Attempting discovery. Impersonating user.");
    SessionImpersonator user(*this);
    if (!user.Impersonate(config.m_currentUser)) {
        return LastErrorOr(ERROR_CANNOT_IMPERSONATE);
    }

    WINHTTP_CURRENT_USER_IE_PROXY_CONFIG answer{};
    if (!Host().Discovery().GetUserProxyConfig(answer)) {
        return LastErrorOr(ERROR_WINHTTP_INTERNAL_ERROR);
    }
    UserSettings settings{GlobalText(answer.lpszAutoConfigUrl), GlobalText(answer.lpszProxy),
                          GlobalText(answer.lpszProxyBypass)};
    log.Trace("User proxy configuration succeeded.");

    if (IsGiven(settings.scriptUrl)) {
        log.Trace("User proxy config: Use pac file " + TextOrNull(settings.scriptUrl));
        WINHTTP_AUTOPROXY_OPTIONS options{};
        options.dwFlags = WINHTTP_AUTOPROXY_CONFIG_URL;
        options.lpszAutoConfigUrl = settings.scriptUrl.Get();
        options.fAutoLogonIfChallenged = config.m_wpadAutoLogon;
        if (const DWORD error = GetProxyForUrl(session, url, options, info); error != ERROR_SUCCESS) {
            log.Trace("WinHttpGetProxyForUrl failed: " + WinHttpErrorName(error));
            return error;
        }
        log.Trace("WinHttpgetProxyForUrl succeeded.");
    } else if (IsGiven(settings.proxy)) {
        info = {WINHTTP_ACCESS_TYPE_NAMED_PROXY, std::move(settings.proxy), std::move(settings.bypass)};
        log.Trace("Using named proxy succeeded.");
    } else {
        log.Trace("No pac file nor proxy found");
        log.Trace("Setting m_systemProxyDiscoverySucceeded = false");
        info.bypass.Reset();
        m_systemProxyDiscoverySucceeded = false;
        return ERROR_FILE_NOT_FOUND; // as WinHTTP says it of a user who has no settings at all
    }
    m_systemProxyDiscoverySucceeded = true;
    return ERROR_SUCCESS;
}

bool CHTTPSessionAutoProxy::TrySystemWideProxyConfig(ProxyInfo& info)
{
    const OperationLog log = Log("CHTTPSessionAutoProxy::TrySystemWideProxyConfig");
    WINHTTP_PROXY_INFO answer{};
    if (!Host().Discovery().GetDefaultProxyConfiguration(answer)) {
        log.Trace("WinHttpGetDefaultProxyConfiguration failed: " + WinHttpErrorName(::GetLastError()));
        log.Trace("Setting m_systemProxyDiscoverySucceeded = false");
        m_systemProxyDiscoverySucceeded = false;
        return false;
    }
    ProxyInfo found{answer.dwAccessType, GlobalText(answer.lpszProxy), GlobalText(answer.lpszProxyBypass)};
    log.Trace("Default proxy configuration succeeded.");
    if (found.accessType == WINHTTP_ACCESS_TYPE_NO_PROXY) {
        log.Trace("Default proxy configuration is access type no proxy.");
        log.Trace("Setting m_systemProxyDiscoverySucceeded = false");
        m_systemProxyDiscoverySucceeded = false;
        return false;
    }
    info = std::move(found);
    m_systemProxyDiscoverySucceeded = true; // or the next request within the life time would be told of a failure
    return true;
}

} // namespace vantor
