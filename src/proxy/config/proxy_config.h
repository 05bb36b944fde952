// The proxy configuration record.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vantor {

/// How to reach the service: filled by the telemetry client, copied by the proxy manager, never written back.
struct ProxyConfig {
    std::wstring m_address;                  ///< named proxy in the form WinHTTP accepts; empty: none
    std::uint32_t m_wpadFlags = 0;           ///< WINHTTP_AUTOPROXY_OPTIONS::dwFlags; 0: no automatic discovery
    std::uint32_t m_wpadDetectFlags = 0;     ///< WINHTTP_AUTOPROXY_OPTIONS::dwAutoDetectFlags
    std::wstring m_wpadConfigUrl;            ///< URL of an auto-config script; empty: none
    bool m_wpadAutoLogon = false;            ///< send the logged-on user's credentials for the auto-config script
    bool m_systemProxyDiscovery = false;     ///< may fall back to the system's own proxy settings
    std::uint32_t m_systemProxyLifeTime = 0; ///< milliseconds for which a discovered system proxy stays valid
    std::wstring m_username;
    std::wstring m_password;
    std::vector<std::uint32_t> m_repAuthSchemes; ///< ProxyAuthScheme values to try, in order of preference
    void* m_currentUser = nullptr;               ///< token handle of the logged-on user, when the caller supplies one
    std::wstring m_dnsServer;         ///< DNS server that resolves the named proxy; empty: m_address as it stands
    std::uint32_t m_proxyTimeout = 0; ///< milliseconds for work through the proxy; 0: the caller's own
    bool m_proxyTimeoutFallbackToDirect = false; ///< a failed proxy attempt may be repeated directly, once
};

/// True when the configuration uses a proxy at all: a named one or automatic discovery.
inline bool UsesProxy(const ProxyConfig& config)
{
    return !config.m_address.empty() || config.m_wpadFlags != 0;
}

/// The product's own enumeration of proxy authentication schemes (ProxyConfig::m_repAuthSchemes).
enum ProxyAuthScheme : std::uint32_t {
    REP_PROXY_AUTH_SCHEME_NONE = 0,
    REP_PROXY_AUTH_SCHEME_BASIC = 1,
    /// Succeeds on no Windows: requests are opened with automatic logon at its highest level, where WinHTTP sends nobody's
    /// logon unasked. No option of the program configures it.
    REP_PROXY_AUTH_SCHEME_CURRENT_USER = 2,
    REP_PROXY_AUTH_SCHEME_NTLM = 3,
    REP_PROXY_AUTH_SCHEME_KERBEROS = 4,
};

} // namespace vantor
