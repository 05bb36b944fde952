// The interface for the WinHTTP calls of the transport and the proxy code.
#pragma once

#include <windows.h>

#include <winhttp.h>

namespace vantor {

/// One operation per WinHTTP function, with the same name, arguments and results. Each returns what WinHTTP returned
/// and leaves the last-error value as WinHTTP set it.
class IHTTP {
public:
    virtual ~IHTTP() = default;

    virtual bool IsReady() = 0;
    virtual BOOL CloseHandle(HINTERNET handle) = 0;
    virtual BOOL QueryOption(HINTERNET internet, DWORD option, void* buffer, DWORD* bufferLength) = 0;
    virtual HINTERNET Open(const wchar_t* userAgent, DWORD accessType, const wchar_t* proxyName,
                           const wchar_t* proxyBypass, DWORD flags) = 0;
    virtual BOOL SetTimeouts(HINTERNET internet, int resolve, int connect, int send, int receive) = 0;
    virtual HINTERNET Connect(HINTERNET session, const wchar_t* serverName, INTERNET_PORT serverPort,
                              DWORD reserved) = 0;
    virtual BOOL SetOption(HINTERNET internet, DWORD option, void* buffer, DWORD bufferLength) = 0;
    virtual HINTERNET OpenRequest(HINTERNET connect, const wchar_t* verb, const wchar_t* objectName,
                                  const wchar_t* version, const wchar_t* referrer, const wchar_t** acceptTypes,
                                  DWORD flags) = 0;
    virtual BOOL AddRequestHeaders(HINTERNET request, const wchar_t* headers, DWORD headersLength, DWORD modifiers) = 0;
    virtual BOOL SendRequest(HINTERNET request, const wchar_t* headers, DWORD headersLength, void* optional,
                             DWORD optionalLength, DWORD totalLength, DWORD_PTR context) = 0;
    virtual BOOL ReceiveResponse(HINTERNET request, void* reserved) = 0;
    virtual BOOL QueryDataAvailable(HINTERNET request, DWORD* available) = 0;
    virtual BOOL ReadData(HINTERNET request, void* buffer, DWORD toRead, DWORD* read) = 0;
    virtual BOOL WriteData(HINTERNET request, const void* buffer, DWORD toWrite, DWORD* written) = 0;
    virtual WINHTTP_STATUS_CALLBACK SetStatusCallback(HINTERNET internet, WINHTTP_STATUS_CALLBACK callback,
                                                      DWORD notificationFlags, DWORD_PTR reserved) = 0;
    virtual BOOL QueryAuthSchemes(HINTERNET request, DWORD* supportedSchemes, DWORD* firstScheme,
                                  DWORD* authTarget) = 0;
    virtual BOOL SetCredentials(HINTERNET request, DWORD authTargets, DWORD authScheme, const wchar_t* userName,
                                const wchar_t* password, void* reserved) = 0;
    virtual BOOL QueryHeaders(HINTERNET request, DWORD infoLevel, const wchar_t* name, void* buffer,
                              DWORD* bufferLength, DWORD* index) = 0;
};

} // namespace vantor
