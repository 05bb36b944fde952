// Chooses the proxy authentication scheme for each attempt of a request.
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

/// One object per request. It keeps the queue of schemes still to try and learns their order from the proxy's first 407
/// answer. For each attempt: InitRequest, send, CleanRequest, FindNextAuthenticationScheme; repeat while
/// WantsAnotherAttempt returns true. All messages are at trace level.
class C_HTTPProxyAuthListManager {
public:
    /// The manager must outlive this object.
    C_HTTPProxyAuthListManager(CHTTPProxyManager& manager, std::shared_ptr<ILogger> logger);

    /// Removes the front scheme from the queue and prepares the request with it, or without any if the queue is empty.
    /// False on failure.
    bool InitRequest(HINTERNET session, HttpRequest& request, const std::wstring& url);

    /// Cleans up after the attempt. False if no scheme was in use, otherwise the manager's result.
    bool CleanRequest();

    /// Evaluates the answer to an attempt. The first 407 fills the queue with the configured schemes that the proxy
    /// supports, once for each scheme that it offers; any other answer empties the queue.
    void FindNextAuthenticationScheme(HttpRequest& request);

    /// Whether the queue holds a scheme that has not been tried; removes those that have from its front. The queue may
    /// hold a scheme several times, but sending a wrong password repeatedly could lock the account.
    bool WantsAnotherAttempt();

    /// The scheme object for a product scheme value; null if it is unknown.
    ProxyAuthSchemePtr LookUpAuthenticationSchemeByRepAuthenticationScheme(std::uint32_t value) const;

    /// Appends the matches of MatchSchemes to the queue.
    void MatchMsAuthenticationSchemes(DWORD mask);

private:
    void QueryProxy(HttpRequest& request, const class OperationLog& log);

    static constexpr std::size_t kSchemeCount = 5;

    std::list<std::uint32_t> m_queue;
    bool m_proxyQueried = false;
    CHTTPProxyManager& m_manager;
    std::vector<std::uint32_t> m_configured;
    std::array<ProxyAuthSchemePtr, kSchemeCount> m_schemes; ///< indexed by product scheme value
    ProxyAuthSchemePtr m_inUse;                             ///< null between attempts
    std::set<std::uint32_t> m_tried;
    std::shared_ptr<ILogger> m_logger;
};

} // namespace vantor
