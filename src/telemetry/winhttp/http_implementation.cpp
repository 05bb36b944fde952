#include "telemetry/winhttp/http_implementation.h"

#include "platform/modules/winhttp.h"
#include "platform/text/encoding.h"
#include "run/log/log_texts.h"

#include <string>
#include <type_traits>
#include <utility>

namespace vantor {
namespace {

std::string ValueText(const wchar_t* text)
{
    return text ? ToNarrow(text) : texts::kNull;
}

std::string ValueText(const void* pointer)
{
    return PointerText(pointer);
}

template <typename Number>
    requires std::is_integral_v<Number> std::string ValueText(Number number)
    {
        return std::to_string(number);
    }

void AppendArguments(std::string&, const char*) {}

template <typename Value, typename... Rest>
void AppendArguments(std::string& line, const char* separator, const char* name, const Value& value,
                     const Rest&... rest)
{
    line += separator;
    line += name;
    line += '=';
    line += ValueText(value);
    AppendArguments(line, ", ", rest...);
}

} // namespace

template <typename... Arguments>
void HttpImplementation::Trace(const char* operation, const Arguments&... arguments) const
{
    if (m_logger) {
        std::string line = std::string("HttpImplementation::") + operation;
        AppendArguments(line, ": ", arguments...);
        m_logger->Log(LogLevel::trace, line);
    }
}

HttpImplementation::HttpImplementation(std::shared_ptr<ILogger> logger) : m_logger(std::move(logger)) {}

bool HttpImplementation::IsReady()
{
    return true;
}

BOOL HttpImplementation::CloseHandle(HINTERNET handle)
{
    Trace("CloseHandle", "handle", handle);
    return winhttp::WinHttpCloseHandle(handle);
}

BOOL HttpImplementation::QueryOption(HINTERNET internet, DWORD option, void* buffer, DWORD* bufferLength)
{
    Trace("QueryOption", "hInternet", internet, "dwOption", option, "lpBuffer", buffer, "lpdwBufferLength",
          bufferLength);
    return winhttp::WinHttpQueryOption(internet, option, buffer, bufferLength);
}

HINTERNET HttpImplementation::Open(const wchar_t* userAgent, DWORD accessType, const wchar_t* proxyName,
                                   const wchar_t* proxyBypass, DWORD flags)
{
    Trace("Open", "pwszUserAgent", userAgent, "dwAccessType", accessType, "pwszProxyName", proxyName, "pwszProxyBypass",
          proxyBypass, "dwFlags", flags);
    return winhttp::WinHttpOpen(userAgent, accessType, proxyName, proxyBypass, flags);
}

BOOL HttpImplementation::SetTimeouts(HINTERNET internet, int resolve, int connect, int send, int receive)
{
    Trace("SetTimeouts", "hInternet", internet, "dwResolveTimeout", resolve, "dwConnectTimeout", connect,
          "dwSendTimeout", send, "dwReceiveTimeout", receive);
    return winhttp::WinHttpSetTimeouts(internet, resolve, connect, send, receive);
}

HINTERNET HttpImplementation::Connect(HINTERNET session, const wchar_t* serverName, INTERNET_PORT serverPort,
                                      DWORD reserved)
{
    Trace("Connect", "hSession", session, "pswzServerName", serverName, "nServerPort", serverPort, "dwReserved",
          reserved);
    return winhttp::WinHttpConnect(session, serverName, serverPort, reserved);
}

BOOL HttpImplementation::SetOption(HINTERNET internet, DWORD option, void* buffer, DWORD bufferLength)
{
    Trace("SetOption", "hInternet", internet, "dwOption", option, "lpBuffer", buffer, "dwBufferLength", bufferLength);
    return winhttp::WinHttpSetOption(internet, option, buffer, bufferLength);
}

HINTERNET HttpImplementation::OpenRequest(HINTERNET connect, const wchar_t* verb, const wchar_t* objectName,
                                          const wchar_t* version, const wchar_t* referrer, const wchar_t** acceptTypes,
                                          DWORD flags)
{
    Trace("OpenRequest", "hConnect", connect, "pwszVerb", verb, "pwszObjectName", objectName, "pwszVersion", version,
          "pwszReferrer", referrer, "ppwszAcceptTypes", acceptTypes, "dwFlags", flags);
    return winhttp::WinHttpOpenRequest(connect, verb, objectName, version, referrer, acceptTypes, flags);
}

BOOL HttpImplementation::AddRequestHeaders(HINTERNET request, const wchar_t* headers, DWORD headersLength,
                                           DWORD modifiers)
{
    Trace("AddRequestHeaders", "hRequest", request, "pwszHeaders", headers, "dwHeadersLength", headersLength,
          "dwModifiers", modifiers);
    return winhttp::WinHttpAddRequestHeaders(request, headers, headersLength, modifiers);
}

BOOL HttpImplementation::SendRequest(HINTERNET request, const wchar_t* headers, DWORD headersLength, void* optional,
                                     DWORD optionalLength, DWORD totalLength, DWORD_PTR context)
{
    return winhttp::WinHttpSendRequest(request, headers, headersLength, optional, optionalLength, totalLength, context);
}

BOOL HttpImplementation::ReceiveResponse(HINTERNET request, void* reserved)
{
    return winhttp::WinHttpReceiveResponse(request, reserved);
}

BOOL HttpImplementation::QueryDataAvailable(HINTERNET request, DWORD* available)
{
    return winhttp::WinHttpQueryDataAvailable(request, available);
}

BOOL HttpImplementation::ReadData(HINTERNET request, void* buffer, DWORD toRead, DWORD* read)
{
    return winhttp::WinHttpReadData(request, buffer, toRead, read);
}

BOOL HttpImplementation::WriteData(HINTERNET request, const void* buffer, DWORD toWrite, DWORD* written)
{
    return winhttp::WinHttpWriteData(request, buffer, toWrite, written);
}

WINHTTP_STATUS_CALLBACK HttpImplementation::SetStatusCallback(HINTERNET internet, WINHTTP_STATUS_CALLBACK callback,
                                                              DWORD notificationFlags, DWORD_PTR reserved)
{
    return winhttp::WinHttpSetStatusCallback(internet, callback, notificationFlags, reserved);
}

BOOL HttpImplementation::QueryAuthSchemes(HINTERNET request, DWORD* supportedSchemes, DWORD* firstScheme,
                                          DWORD* authTarget)
{
    return winhttp::WinHttpQueryAuthSchemes(request, supportedSchemes, firstScheme, authTarget);
}

BOOL HttpImplementation::SetCredentials(HINTERNET request, DWORD authTargets, DWORD authScheme, const wchar_t* userName,
                                        const wchar_t* password, void* reserved)
{
    Trace("SetCredentials", "hRequest", request, "AuthTargets", authTargets, "AuthScheme", authScheme, "pwszUserName",
          userName, texts::kPasswordArgument, password);
    return winhttp::WinHttpSetCredentials(request, authTargets, authScheme, userName, password, reserved);
}

BOOL HttpImplementation::QueryHeaders(HINTERNET request, DWORD infoLevel, const wchar_t* name, void* buffer,
                                      DWORD* bufferLength, DWORD* index)
{
    return winhttp::WinHttpQueryHeaders(request, infoLevel, name, buffer, bufferLength, index);
}

} // namespace vantor
