// The system's own proxy settings: the logged-on user's, then the machine's.
#pragma once

#include "proxy/auth/proxy_host.h"
#include "proxy/session/proxy_info.h"
#include "run/log/operation_log.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace vantor {

/// Caches the last result. Everything is logged at trace level, under the session's name.
class SystemProxy {
public:
    /// The host must outlive this object.
    explicit SystemProxy(const ProxyHost& host) : m_host(host) {}

    /// The proxy for the URL according to the system's own settings, or the cached result, including a failure, while
    /// it is valid. std::nullopt if the configuration does not ask for it or there is no proxy.
    std::optional<ProxyInfo> TrySystemProxyInfo(HINTERNET session, const std::wstring& url);

private:
    OperationLog Log(const char* operation) const { return {m_host.logger, operation}; }

    std::optional<ProxyInfo> Discover(HINTERNET session, const std::wstring& url, const OperationLog& log);

    /// The logged-on user's settings, read as that user.
    ProxyAnswer TryCurrentUserProxyConfig(HINTERNET session, const std::wstring& url);

    /// The machine's settings.
    std::optional<ProxyInfo> TrySystemWideProxyConfig();

    const ProxyHost& m_host;
    std::mutex m_mutex;                           ///< guards the members below
    std::uint64_t m_systemProxyDiscoveryTime = 0; ///< tick count in milliseconds; 0: never
    std::optional<ProxyInfo> m_systemProxy;       ///< empty: discovery failed (m_systemProxyDiscoverySucceeded = false)
};

} // namespace vantor
