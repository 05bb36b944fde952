// How the program reaches the service through a proxy.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vantor {

/// Filled by the telemetry client, copied by the proxy manager and never written back.
struct ProxyConfig {
    std::wstring m_address;                  ///< named proxy in WinHTTP's format; empty: none
    std::uint32_t m_wpadFlags = 0;           ///< WINHTTP_AUTOPROXY_OPTIONS::dwFlags; 0: no automatic discovery
    std::uint32_t m_wpadDetectFlags = 0;     ///< WINHTTP_AUTOPROXY_OPTIONS::dwAutoDetectFlags
    std::wstring m_wpadConfigUrl;            ///< URL of an auto-config script; empty: none
    bool m_wpadAutoLogon = false;            ///< send the logged-on user's credentials for the auto-config script
    bool m_systemProxyDiscovery = false;     ///< use the system's own proxy settings if nothing is found
    std::uint32_t m_systemProxyLifeTime = 0; ///< how long a discovered system proxy stays valid, in ms
    std::wstring m_username;
    std::wstring m_password;
    std::vector<std::uint32_t> m_repAuthSchemes; ///< ProxyAuthScheme values to try, in order of preference
    void* m_currentUser = nullptr;               ///< token handle of the logged-on user; null: to be found
    std::wstring m_dnsServer;         ///< DNS server that resolves the named proxy; empty: m_address is used as is
    std::uint32_t m_proxyTimeout = 0; ///< connect timeout through the proxy in ms; 0: the caller's own
    bool m_proxyTimeoutFallbackToDirect = false; ///< repeat a failed proxy attempt directly, once
};

/// Whether the configuration uses a proxy: a named one or automatic discovery.
inline bool UsesProxy(const ProxyConfig& config)
{
    return !config.m_address.empty() || config.m_wpadFlags != 0;
}

/// The product's own enumeration of proxy authentication schemes (ProxyConfig::m_repAuthSchemes).
enum ProxyAuthScheme : std::uint32_t {
    REP_PROXY_AUTH_SCHEME_NONE = 0,
    REP_PROXY_AUTH_SCHEME_BASIC = 1,
    /// Never succeeds: requests are opened with WINHTTP_AUTOLOGON_SECURITY_LEVEL_HIGH, with which WinHTTP does not send
    /// the user's credentials on its own. No option of the program configures it.
    REP_PROXY_AUTH_SCHEME_CURRENT_USER = 2,
    REP_PROXY_AUTH_SCHEME_NTLM = 3,
    REP_PROXY_AUTH_SCHEME_KERBEROS = 4,
};

} // namespace vantor
