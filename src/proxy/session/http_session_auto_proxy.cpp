#include "proxy/session/http_session_auto_proxy.h"

#include "platform/last_error.h"
#include "platform/text.h"
#include "proxy/session/proxy_discovery.h"
#include "telemetry/winhttp/code_names.h"

#include <utility>

namespace vantor {
namespace {

constexpr DWORD kDetectFlags = WINHTTP_AUTO_DETECT_TYPE_DHCP | WINHTTP_AUTO_DETECT_TYPE_DNS_A;

/// Whether the flags ask for nothing that the rest of the configuration lacks.
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
    options.dwAutoDetectFlags = config.m_wpadDetectFlags & kDetectFlags;
    options.lpszAutoConfigUrl = config.m_wpadConfigUrl.empty() ? nullptr : config.m_wpadConfigUrl.c_str();
    options.fAutoLogonIfChallenged = config.m_wpadAutoLogon;
    return options;
}

} // namespace

CHTTPSessionAutoProxy::CHTTPSessionAutoProxy(ISessionHost& host, std::shared_ptr<ILogger> logger)
    : CHTTPSessionProxy(host, std::move(logger))
{
    LogName("CHTTPSessionAutoProxy::CHTTPSessionAutoProxy");
}

DWORD CHTTPSessionAutoProxy::InitRequest(HINTERNET session, IProxiedRequest& request, const std::wstring& url,
                                         const ProxyAuthSchemePtr& scheme)
{
    const DWORD result = InitProxy(session, request, url);
    return result != 0 && scheme ? scheme->InitRequest(Host(), request) : result;
}

DWORD CHTTPSessionAutoProxy::CleanRequest(const ProxyAuthSchemePtr& scheme)
{
    return CleanWith(scheme, Log("CHTTPSessionAutoProxy::CleanRequest"));
}

DWORD CHTTPSessionAutoProxy::InitProxy(HINTERNET session, IProxiedRequest& request, const std::wstring& url)
{
    const OperationLog log = Log("CHTTPSessionAutoProxy::InitProxy");
    const ProxyConfig& config = Host().Config();
    if (!IsConsistent(config)) {
        return 0;
    }

    ProxyInfo found;
    WINHTTP_AUTOPROXY_OPTIONS options = MakeOptions(config);
    log.Trace("WinHttpGetProxyForUrl() called for " + ToNarrow(url));
    if (const DWORD error = GetProxyForUrl(session, url, options, found); error != ERROR_SUCCESS) {
        log.Trace("WinHttpGetProxyForUrl failed: " + WinHttpErrorName(error));
        if (!TrySystemProxyInfo(session, url, found)) {
            log.Trace("Setting 'direct' access.");
            found = {};
        }
    }
    log.Trace("Autoproxy dwAccessType: " + std::to_string(found.accessType));
    log.Trace("Autoproxy lpszProxy: " + TextOrNull(found.proxy));
    log.Trace("Autoproxy lpszProxyBypass: " + TextOrNull(found.bypass));

    WINHTTP_PROXY_INFO info{found.accessType, found.proxy.Get(), found.bypass.Get()};
    const BOOL set = Host().Http().SetOption(request.Handle(), WINHTTP_OPTION_PROXY, &info, sizeof(info));
    if (!set) {
        const LastErrorKeeper error;
        log.Trace("SetOption failed: " + WinHttpErrorName(error.Error()));
    }
    return set ? 1 : 0;
}

DWORD CHTTPSessionAutoProxy::GetProxyForUrl(HINTERNET session, const std::wstring& url,
                                            WINHTTP_AUTOPROXY_OPTIONS& options, ProxyInfo& info) const
{
    WINHTTP_PROXY_INFO answer{};
    if (!Host().Discovery().GetProxyForUrl(session, url.c_str(), options, answer)) {
        return LastErrorOr(ERROR_WINHTTP_INTERNAL_ERROR);
    }
    info = {answer.dwAccessType, GlobalText(answer.lpszProxy), GlobalText(answer.lpszProxyBypass)};
    return ERROR_SUCCESS;
}

std::string CHTTPSessionAutoProxy::TextOrNull(const GlobalText& text)
{
    return text ? ToNarrow(text.Get()) : "<null>";
}

} // namespace vantor
