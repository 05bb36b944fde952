#include "proxy/session/http_session_auto_proxy.h"

#include "platform/owner.h"
#include "platform/text/encoding.h"
#include "run/log/log_texts.h"
#include "telemetry/winhttp/code_names.h"

#include <utility>

namespace vantor {
namespace {

constexpr DWORD kDetectFlags = WINHTTP_AUTO_DETECT_TYPE_DHCP | WINHTTP_AUTO_DETECT_TYPE_DNS_A;

/// Whether the configuration has everything that its flags require.
bool IsConsistent(const ProxyConfig& config)
{
    const bool detectsNothing =
        (config.m_wpadFlags & WINHTTP_AUTOPROXY_AUTO_DETECT) && !(config.m_wpadDetectFlags & kDetectFlags);
    const bool lacksUrl = (config.m_wpadFlags & WINHTTP_AUTOPROXY_CONFIG_URL) && config.m_wpadConfigUrl.empty();
    return !detectsNothing && !lacksUrl;
}

WINHTTP_AUTOPROXY_OPTIONS MakeOptions(const ProxyConfig& config)
{
    WINHTTP_AUTOPROXY_OPTIONS options{};
    options.dwFlags = config.m_wpadFlags;
    if (config.m_wpadFlags & WINHTTP_AUTOPROXY_AUTO_DETECT) { // otherwise WinHTTP requires 0
        options.dwAutoDetectFlags = config.m_wpadDetectFlags & kDetectFlags;
    }
    options.lpszAutoConfigUrl = config.m_wpadConfigUrl.empty() ? nullptr : config.m_wpadConfigUrl.c_str();
    options.fAutoLogonIfChallenged = config.m_wpadAutoLogon;
    return options;
}

} // namespace

CHTTPSessionAutoProxy::CHTTPSessionAutoProxy(const ProxyHost& host) : CHTTPSessionProxy(host), m_system(host)
{
    LogName("CHTTPSessionAutoProxy::CHTTPSessionAutoProxy");
}

bool CHTTPSessionAutoProxy::InitRequest(HINTERNET session, HttpRequest& request, const std::wstring& url,
                                        const ProxyAuthSchemePtr& scheme)
{
    return InitProxy(session, request, url) && (!scheme || scheme->InitRequest(Host(), request));
}

bool CHTTPSessionAutoProxy::CleanRequest(const ProxyAuthSchemePtr& scheme)
{
    return CleanWith(scheme, Log("CHTTPSessionAutoProxy::CleanRequest"));
}

bool CHTTPSessionAutoProxy::InitProxy(HINTERNET session, HttpRequest& request, const std::wstring& url)
{
    const OperationLog log = Log("CHTTPSessionAutoProxy::InitProxy");
    if (!IsConsistent(Host().config)) {
        return false;
    }
    const ProxyInfo found = FindProxy(session, url, log);
    log.Trace("Autoproxy dwAccessType: " + std::to_string(found.accessType));
    log.Trace(texts::kAutoproxyLpszProxy + TextOrNull(found.proxy));
    log.Trace("Autoproxy lpszProxyBypass: " + TextOrNull(found.bypass));

    const bool hasBypass = found.bypass && *found.bypass.Get() != L'\0'; // WinHTTP accepts null, but not an empty one
    WINHTTP_PROXY_INFO info{found.accessType, found.proxy.Get(), hasBypass ? found.bypass.Get() : nullptr};
    if (!request.SetOption(WINHTTP_OPTION_PROXY, &info, sizeof(info))) {
        const LastErrorKeeper error;
        log.Trace("SetOption failed: " + WinHttpErrorName(error.Error()));
        return false;
    }
    return true;
}

ProxyInfo CHTTPSessionAutoProxy::FindProxy(HINTERNET session, const std::wstring& url, const OperationLog& log)
{
    const WINHTTP_AUTOPROXY_OPTIONS options = MakeOptions(Host().config);
    log.Trace("WinHttpGetProxyForUrl() called for " + ToNarrow(url));
    ProxyAnswer answer = GetProxyForUrl(*Host().calls.discovery, session, url, options);
    if (answer.error == ERROR_SUCCESS) {
        return std::move(answer.info);
    }
    log.Trace("WinHttpGetProxyForUrl failed: " + WinHttpErrorName(answer.error));
    if (auto found = m_system.TrySystemProxyInfo(session, url)) {
        return std::move(*found);
    }
    log.Trace("Setting 'direct' access.");
    return {};
}

} // namespace vantor
