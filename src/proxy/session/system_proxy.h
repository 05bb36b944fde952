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

/// Remembers what it found last. Everything is logged at trace level, under the session's name.
class SystemProxy {
public:
    /// The host outlives this object.
    explicit SystemProxy(const ProxyHost& host) : m_host(host) {}

    /// The proxy for the URL by the system's own settings, or once more the last answer, a failure included, while its
    /// life time lasts. Nothing when the configuration does not ask for it, or there is none.
    std::optional<ProxyInfo> TrySystemProxyInfo(HINTERNET session, const std::wstring& url);

private:
    OperationLog Log(const char* operation) const { return {m_host.logger, operation}; }

    std::optional<ProxyInfo> Discover(HINTERNET session, const std::wstring& url, const OperationLog& log);

    /// The logged-on user's settings, read as that user.
    ProxyAnswer TryCurrentUserProxyConfig(HINTERNET session, const std::wstring& url);

    /// The machine's settings.
    std::optional<ProxyInfo> TrySystemWideProxyConfig();

    const ProxyHost& m_host;
    std::mutex m_mutex;                           ///< guards all below
    std::uint64_t m_systemProxyDiscoveryTime = 0; ///< in milliseconds of the tick counter; 0: never
    std::optional<ProxyInfo> m_systemProxy;       ///< found then; nothing: m_systemProxyDiscoverySucceeded is false
};

} // namespace vantor
