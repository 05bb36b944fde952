// Which proxy authentication scheme each attempt of a request uses.
#pragma once

#include "proxy/auth/proxy_auth_scheme.h"
#include "proxy/http_proxy_manager.h"
#include "run/log/logger.h"

#include <array>
#include <cstdint>
#include <list>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace vantor {

/// Made for each request: keeps the queue of schemes still to try, and learns their order from the proxy's first 407
/// answer. Per attempt: InitRequest, send, CleanRequest, then FindNextAuthenticationScheme; again while
/// WantsAnotherAttempt. All messages are at trace level.
class C_HTTPProxyAuthListManager {
public:
    /// The manager outlives this object.
    C_HTTPProxyAuthListManager(CHTTPProxyManager& manager, std::shared_ptr<ILogger> logger);

    /// Takes the front scheme off the queue and prepares the request with it; without one, with none. Non-zero for
    /// success.
    bool InitRequest(HINTERNET session, HttpRequest& request, const std::wstring& url);

    /// Cleans up after the attempt; false when no scheme was in use, otherwise the manager's result.
    bool CleanRequest();

    /// Looks at the answer to an attempt. The first 407 fills the queue with the configured schemes that the proxy
    /// supports, once for each scheme that it offers; anything but a 407 empties the queue.
    void FindNextAuthenticationScheme(HttpRequest& request);

    /// Whether the queue holds a scheme that was not tried yet; those that were are taken off its front. It may name a
    /// scheme several times, but repeating one wrong password would lock an account.
    bool WantsAnotherAttempt();

    /// The scheme object of a product scheme value; null for an unknown one.
    ProxyAuthSchemePtr LookUpAuthenticationSchemeByRepAuthenticationScheme(std::uint32_t value) const;

    /// Appends to the queue, for each bit of the mask, every configured scheme whose WinHTTP value shares a bit with
    /// the whole mask. The repetitions are part of the negotiation.
    void MatchMsAuthenticationSchemes(DWORD mask);

private:
    void QueryProxy(HttpRequest& request, const class OperationLog& log);

    static constexpr std::size_t kSchemeCount = 5;

    std::list<std::uint32_t> m_queue;
    bool m_proxyQueried = false;
    CHTTPProxyManager& m_manager;
    std::vector<std::uint32_t> m_configured;
    std::array<ProxyAuthSchemePtr, kSchemeCount> m_schemes; ///< by product scheme value
    ProxyAuthSchemePtr m_inUse;                             ///< null between attempts
    std::set<std::uint32_t> m_tried;
    std::shared_ptr<ILogger> m_logger;
};

} // namespace vantor
