// The implementation of IHTTP that calls WinHTTP.
#pragma once

#include "run/log/logger.h"
#include "telemetry/winhttp/http_interface.h"

#include <memory>

namespace vantor {

/// Forwards each call to WinHTTP. Calls that create, configure or close handles are logged first, with all arguments,
/// including the user name and the password given to SetCredentials in clear text. Without a logger, nothing is logged.
/// Handles are closed only by their owners, through CloseHandle.
class HttpImplementation : public IHTTP {
public:
    explicit HttpImplementation(std::shared_ptr<ILogger> logger);

    bool IsReady() override;
    BOOL CloseHandle(HINTERNET handle) override;
    BOOL QueryOption(HINTERNET internet, DWORD option, void* buffer, DWORD* bufferLength) override;
    HINTERNET Open(const wchar_t* userAgent, DWORD accessType, const wchar_t* proxyName, const wchar_t* proxyBypass,
                   DWORD flags) override;
    BOOL SetTimeouts(HINTERNET internet, int resolve, int connect, int send, int receive) override;
    HINTERNET Connect(HINTERNET session, const wchar_t* serverName, INTERNET_PORT serverPort, DWORD reserved) override;
    BOOL SetOption(HINTERNET internet, DWORD option, void* buffer, DWORD bufferLength) override;
    HINTERNET OpenRequest(HINTERNET connect, const wchar_t* verb, const wchar_t* objectName, const wchar_t* version,
                          const wchar_t* referrer, const wchar_t** acceptTypes, DWORD flags) override;
    BOOL AddRequestHeaders(HINTERNET request, const wchar_t* headers, DWORD headersLength, DWORD modifiers) override;
    BOOL SendRequest(HINTERNET request, const wchar_t* headers, DWORD headersLength, void* optional,
                     DWORD optionalLength, DWORD totalLength, DWORD_PTR context) override;
    BOOL ReceiveResponse(HINTERNET request, void* reserved) override;
    BOOL QueryDataAvailable(HINTERNET request, DWORD* available) override;
    BOOL ReadData(HINTERNET request, void* buffer, DWORD toRead, DWORD* read) override;
    BOOL WriteData(HINTERNET request, const void* buffer, DWORD toWrite, DWORD* written) override;
    WINHTTP_STATUS_CALLBACK SetStatusCallback(HINTERNET internet, WINHTTP_STATUS_CALLBACK callback,
                                              DWORD notificationFlags, DWORD_PTR reserved) override;
    BOOL QueryAuthSchemes(HINTERNET request, DWORD* supportedSchemes, DWORD* firstScheme, DWORD* authTarget) override;
    BOOL SetCredentials(HINTERNET request, DWORD authTargets, DWORD authScheme, const wchar_t* userName,
                        const wchar_t* password, void* reserved) override;
    BOOL QueryHeaders(HINTERNET request, DWORD infoLevel, const wchar_t* name, void* buffer, DWORD* bufferLength,
                      DWORD* index) override;

private:
    /// Logs an operation with its arguments, given as alternating names and values.
    template <typename... Arguments>
    void Trace(const char* operation, const Arguments&... arguments) const;

    std::shared_ptr<ILogger> m_logger;
};

} // namespace vantor
