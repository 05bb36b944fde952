#include "telemetry/http_implementation.h"

#include "platform/text.h"

#include <sstream>
#include <utility>

namespace vantor {
namespace {

void WriteValue(std::wostream& stream, const wchar_t* text)
{
    stream << (text ? text : L"<null>");
}

void WriteValue(std::wostream& stream, const void* pointer)
{
    stream << pointer;
}

template <typename Number>
    requires std::is_integral_v<Number>
void WriteValue(std::wostream& stream, Number number)
{
    stream << number;
}

void WriteArguments(std::wostream&, const wchar_t*) {}

template <typename Value, typename... Rest>
void WriteArguments(std::wostream& stream, const wchar_t* separator, const wchar_t* name, const Value& value,
                    const Rest&... rest)
{
    stream << separator << name << L'=';
    WriteValue(stream, value);
    WriteArguments(stream, L", ", rest...);
}

} // namespace

template <typename... Arguments>
void HttpImplementation::Trace(const wchar_t* operation, const Arguments&... arguments) const
{
    if (m_logger) {
        std::wostringstream line;
        line << L"HttpImplementation::" << operation;
        WriteArguments(line, L": ", arguments...);
        m_logger->Log(LogLevel::trace, ToNarrow(line.str()));
    }
}

HttpImplementation::HttpImplementation(std::shared_ptr<ILogger> logger) : m_logger(std::move(logger)) {}

bool HttpImplementation::IsReady()
{
    return true;
}

BOOL HttpImplementation::CloseHandle(HINTERNET handle)
{
    Trace(L"CloseHandle", L"handle", handle);
    return ::WinHttpCloseHandle(handle);
}

BOOL HttpImplementation::QueryOption(HINTERNET internet, DWORD option, void* buffer, DWORD* bufferLength)
{
    Trace(L"QueryOption", L"hInternet", internet, L"dwOption", option, L"lpBuffer", buffer, L"lpdwBufferLength",
          bufferLength);
    return ::WinHttpQueryOption(internet, option, buffer, bufferLength);
}

HINTERNET HttpImplementation::Open(const wchar_t* userAgent, DWORD accessType, const wchar_t* proxyName,
                                   const wchar_t* proxyBypass, DWORD flags)
{
    Trace(L"Open", L"pwszUserAgent", userAgent, L"dwAccessType", accessType, L"pwszProxyName", proxyName,
          L"pwszProxyBypass", proxyBypass, L"dwFlags", flags);
    return ::WinHttpOpen(userAgent, accessType, proxyName, proxyBypass, flags);
}

BOOL HttpImplementation::SetTimeouts(HINTERNET internet, int resolve, int connect, int send, int receive)
{
    Trace(L"SetTimeouts", L"hInternet", internet, L"dwResolveTimeout", resolve, L"dwConnectTimeout", connect,
          L"dwSendTimeout", send, L"dwReceiveTimeout", receive);
    return ::WinHttpSetTimeouts(internet, resolve, connect, send, receive);
}

HINTERNET HttpImplementation::Connect(HINTERNET session, const wchar_t* serverName, INTERNET_PORT serverPort,
                                      DWORD reserved)
{
    Trace(L"Connect", L"hSession", session, L"pswzServerName", serverName, L"nServerPort", serverPort, L"dwReserved",
          reserved);
    return ::WinHttpConnect(session, serverName, serverPort, reserved);
}

BOOL HttpImplementation::SetOption(HINTERNET internet, DWORD option, void* buffer, DWORD bufferLength)
{
    Trace(L"SetOption", L"hInternet", internet, L"dwOption", option, L"lpBuffer", buffer, L"dwBufferLength",
          bufferLength);
    return ::WinHttpSetOption(internet, option, buffer, bufferLength);
}

HINTERNET HttpImplementation::OpenRequest(HINTERNET connect, const wchar_t* verb, const wchar_t* objectName,
                                          const wchar_t* version, const wchar_t* referrer, const wchar_t** acceptTypes,
                                          DWORD flags)
{
    Trace(L"OpenRequest", L"hConnect", connect, L"pwszVerb", verb, L"pwszObjectName", objectName, L"pwszVersion",
          version, L"pwszReferrer", referrer, L"ppwszAcceptTypes", acceptTypes, L"dwFlags", flags);
    return ::WinHttpOpenRequest(connect, verb, objectName, version, referrer, acceptTypes, flags);
}

BOOL HttpImplementation::AddRequestHeaders(HINTERNET request, const wchar_t* headers, DWORD headersLength,
                                           DWORD modifiers)
{
    Trace(L"AddRequestHeaders", L"hRequest", request, L"pwszHeaders", headers, L"dwHeadersLength", headersLength,
          L"dwModifiers", modifiers);
    return ::WinHttpAddRequestHeaders(request, headers, headersLength, modifiers);
}

BOOL HttpImplementation::SendRequest(HINTERNET request, const wchar_t* headers, DWORD headersLength, void* optional,
                                     DWORD optionalLength, DWORD totalLength, DWORD_PTR context)
{
    return ::WinHttpSendRequest(request, headers, headersLength, optional, optionalLength, totalLength, context);
}

BOOL HttpImplementation::ReceiveResponse(HINTERNET request, void* reserved)
{
    return ::WinHttpReceiveResponse(request, reserved);
}

BOOL HttpImplementation::QueryDataAvailable(HINTERNET request, DWORD* available)
{
    return ::WinHttpQueryDataAvailable(request, available);
}

BOOL HttpImplementation::ReadData(HINTERNET request, void* buffer, DWORD toRead, DWORD* read)
{
    return ::WinHttpReadData(request, buffer, toRead, read);
}

BOOL HttpImplementation::WriteData(HINTERNET request, const void* buffer, DWORD toWrite, DWORD* written)
{
    return ::WinHttpWriteData(request, buffer, toWrite, written);
}

WINHTTP_STATUS_CALLBACK HttpImplementation::SetStatusCallback(HINTERNET internet, WINHTTP_STATUS_CALLBACK callback,
                                                              DWORD notificationFlags, DWORD_PTR reserved)
{
    return ::WinHttpSetStatusCallback(internet, callback, notificationFlags, reserved);
}

BOOL HttpImplementation::QueryAuthSchemes(HINTERNET request, DWORD* supportedSchemes, DWORD* firstScheme,
                                          DWORD* authTarget)
{
    return ::WinHttpQueryAuthSchemes(request, supportedSchemes, firstScheme, authTarget);
}

BOOL HttpImplementation::SetCredentials(HINTERNET request, DWORD authTargets, DWORD authScheme, const wchar_t* userName,
                                        const wchar_t* password, void* reserved)
{
    Trace(L"SetCredentials", L"hRequest", request, L"AuthTargets", authTargets, L"AuthScheme", authScheme,
          L"pwszUserName", userName, L"pwszPassword", password);
    return ::WinHttpSetCredentials(request, authTargets, authScheme, userName, password, reserved);
}

BOOL HttpImplementation::QueryHeaders(HINTERNET request, DWORD infoLevel, const wchar_t* name, void* buffer,
                                      DWORD* bufferLength, DWORD* index)
{
    return ::WinHttpQueryHeaders(request, infoLevel, name, buffer, bufferLength, index);
}

} // namespace vantor
