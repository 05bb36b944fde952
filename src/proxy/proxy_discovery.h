// WinHTTP's proxy discovery, which is not part of the HTTP call layer.
#pragma once

#include <windows.h>

#include <winhttp.h>

namespace vantor {

/// Each operation forwards to the WinHTTP function of its name, returns its result and leaves the last-error value as
/// WinHTTP set it. Strings in the results belong to the caller, who frees them with GlobalFree.
class IProxyDiscovery {
public:
    virtual ~IProxyDiscovery() = default;

    virtual BOOL GetProxyForUrl(HINTERNET session, const wchar_t* url, WINHTTP_AUTOPROXY_OPTIONS& options,
                                WINHTTP_PROXY_INFO& info) = 0;
};

/// The one that asks WinHTTP.
class WinHttpProxyDiscovery : public IProxyDiscovery {
public:
    BOOL GetProxyForUrl(HINTERNET session, const wchar_t* url, WINHTTP_AUTOPROXY_OPTIONS& options,
                        WINHTTP_PROXY_INFO& info) override;
};

} // namespace vantor
