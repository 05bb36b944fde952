// WinHTTP's proxy discovery, which is not part of IHTTP.
#pragma once

#include <windows.h>

#include <winhttp.h>

#include <cstdint>

namespace vantor {

/// Each operation forwards to one Windows function, returns its result and leaves the last-error value as
/// Windows set it. The caller owns the strings in the results and frees them with GlobalFree.
class IProxyDiscovery {
public:
    virtual ~IProxyDiscovery() = default;

    virtual BOOL GetProxyForUrl(HINTERNET session, const wchar_t* url, WINHTTP_AUTOPROXY_OPTIONS& options,
                                WINHTTP_PROXY_INFO& info) = 0;

    /// WinHttpGetIEProxyConfigForCurrentUser: the settings of the user that the thread impersonates.
    virtual BOOL GetUserProxyConfig(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG& config) = 0;

    /// WinHttpGetDefaultProxyConfiguration: the machine's settings for WinHTTP.
    virtual BOOL GetDefaultProxyConfiguration(WINHTTP_PROXY_INFO& info) = 0;

    /// GetTickCount64, in milliseconds: the clock for the age of cached results.
    virtual std::uint64_t TickCount() = 0;
};

/// The implementation that calls WinHTTP.
class WinHttpProxyDiscovery : public IProxyDiscovery {
public:
    BOOL GetProxyForUrl(HINTERNET session, const wchar_t* url, WINHTTP_AUTOPROXY_OPTIONS& options,
                        WINHTTP_PROXY_INFO& info) override;
    BOOL GetUserProxyConfig(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG& config) override;
    BOOL GetDefaultProxyConfiguration(WINHTTP_PROXY_INFO& info) override;
    std::uint64_t TickCount() override;
};

} // namespace vantor
