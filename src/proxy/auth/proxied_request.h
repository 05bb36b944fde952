// What proxy sessions and authentication schemes need of a request.
#pragma once

#include <windows.h>

#include <winhttp.h>

namespace vantor {

/// An open request that may go through a proxy.
class IProxiedRequest {
public:
    virtual ~IProxiedRequest() = default;

    /// The WinHTTP request handle.
    virtual HINTERNET Handle() const = 0;

    /// The error with which receiving the answer failed; 0 when it did not fail, or was not tried.
    virtual DWORD ReportedError() const = 0;

    /// Queries the answer's status code (WINHTTP_QUERY_STATUS_CODE as a number); returns 0 or the error.
    virtual DWORD QueryStatusCode(DWORD& status) = 0;

    /// WinHttpQueryAuthSchemes on the request.
    virtual BOOL QueryAuthSchemes(DWORD& supportedSchemes, DWORD& firstScheme, DWORD& authTarget) = 0;

    /// WinHttpSetCredentials on the request.
    virtual BOOL SetCredentials(DWORD authTarget, DWORD authScheme, const wchar_t* userName,
                                const wchar_t* password) = 0;

    /// WinHttpSetOption on the request.
    virtual BOOL SetOption(DWORD option, void* buffer, DWORD length) = 0;
};

} // namespace vantor
