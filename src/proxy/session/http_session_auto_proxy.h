// The session that finds the proxy for each request's URL.
#pragma once

#include "platform/owner.h"
#include "proxy/session/http_session.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace vantor {

/// Opens like the direct session; before each request it asks WinHTTP for the URL's proxy (WPAD or an auto-config
/// script), then for the logged-on user's own settings, read as that user, then for the machine's, and sets what it
/// finds on the request. Everything is logged at trace level, but for a thread that cannot be made itself again.
class CHTTPSessionAutoProxy : public CHTTPSessionProxy {
public:
    CHTTPSessionAutoProxy(ISessionHost& host, std::shared_ptr<ILogger> logger);

    DWORD InitRequest(HINTERNET session, IProxiedRequest& request, const std::wstring& url,
                      const ProxyAuthSchemePtr& scheme) override;
    DWORD CleanRequest(const ProxyAuthSchemePtr& scheme) override;

    /// Makes the thread act as the user of the token, or, when it is null, as the logged-on user, whom it looks for.
    /// On success userToken is held, and previousToken if the thread acted as somebody else before; both are given to
    /// UnImpersonate, on the same thread. On failure both are empty and the thread is as it was; the last error says
    /// why. See SessionImpersonator, which never forgets to end it.
    bool Impersonate(HANDLE token, KernelHandle& userToken, KernelHandle& previousToken) const;

    /// Makes the thread act as it did before Impersonate; does nothing when userToken is empty. Keeps the last error.
    /// A thread that would stay somebody else takes the process with it, also when memory runs out for the log.
    void UnImpersonate(KernelHandle userToken, KernelHandle previousToken) const noexcept;

private:
    /// WINHTTP_PROXY_INFO with owners for its strings.
    struct ProxyInfo {
        DWORD accessType = WINHTTP_ACCESS_TYPE_NO_PROXY;
        GlobalText proxy;
        GlobalText bypass;
    };

    static std::string TextOrNull(const GlobalText& text);

    /// Finds the proxy for the URL and sets it on the request; where none is found, direct access. Non-zero for
    /// success.
    DWORD InitProxy(HINTERNET session, IProxiedRequest& request, const std::wstring& url);

    /// WinHttpGetProxyForUrl; 0 or its error.
    DWORD GetProxyForUrl(HINTERNET session, const std::wstring& url, WINHTTP_AUTOPROXY_OPTIONS& options,
                         ProxyInfo& info) const;

    // The system's own settings: http_session_auto_proxy_system.cpp

    /// Asks for the system's own settings, or repeats their last answer, a failure included, while its life time lasts.
    bool TrySystemProxyInfo(HINTERNET session, const std::wstring& url, ProxyInfo& info);

    /// The logged-on user's settings; 0 or the error.
    DWORD TryCurrentUserProxyConfig(HINTERNET session, const std::wstring& url, ProxyInfo& info);

    /// The machine's settings.
    bool TrySystemWideProxyConfig(ProxyInfo& info);

    // Acting as the logged-on user: http_session_auto_proxy_user.cpp

    bool DiscoverUserToImpersonate(KernelHandle& userToken) const;

    /// The token of the logged-on user's shell.
    HRESULT GetExplorersToken(KernelHandle& userToken) const;

    /// Where nobody is logged on: this account's token, without its privileges.
    HRESULT GetSaferToken(KernelHandle& userToken) const;

    /// The identifier of the first process that has one of the names.
    std::optional<DWORD> IsAnyProcessRunning(const std::vector<std::string>& names) const;

    std::mutex m_mutex;                           ///< guards all below
    std::uint64_t m_systemProxyDiscoveryTime = 0; ///< in milliseconds of the tick counter; 0: never
    bool m_systemProxyDiscoverySucceeded = false;
    ProxyInfo m_systemProxy; ///< found then
};

} // namespace vantor
