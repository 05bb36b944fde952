#include "proxy/session/http_session.h"

namespace vantor {

void CHTTPSession::LogName(const char* constructor) const
{
    if (m_host.logger) {
        m_host.logger->Log(LogLevel::trace, constructor);
    }
}

HINTERNET CHTTPSession::Open(std::uint32_t*, std::uint32_t)
{
    const HINTERNET session =
        m_host.http->Open(m_host.userAgent.c_str(), WINHTTP_ACCESS_TYPE_NO_PROXY, nullptr, nullptr, 0);
    if (!session) {
        const DWORD error = ::GetLastError();
        Log("CHTTPSession::Open").Error("Failed to open non proxy connection, err=" + std::to_string(error));
    }
    return session;
}

bool CHTTPSession::InitRequest(HINTERNET, HttpRequest&, const std::wstring&, const ProxyAuthSchemePtr& scheme)
{
    if (scheme) { // misleading, but support knows the text
        Log("CHTTPSession::InitRequest").Trace("False, authScheme null.");
    }
    return true;
}

bool CHTTPSession::CleanRequest(const ProxyAuthSchemePtr& scheme)
{
    if (scheme) {
        Log("CHTTPSession::CleanRequest").Trace("False, authScheme null.");
    }
    return true;
}

CHTTPSessionProxy::CHTTPSessionProxy(const ProxyHost& host) : CHTTPSession(host)
{
    LogName("CHTTPSessionProxy::CHTTPSessionProxy");
}

bool CHTTPSessionProxy::InitRequest(HINTERNET, HttpRequest& request, const std::wstring&,
                                    const ProxyAuthSchemePtr& scheme)
{
    if (!scheme) {
        Log("CHTTPSessionProxy::InitRequest").Trace("False, authScheme null.");
        return false;
    }
    return scheme->InitRequest(Host(), request);
}

bool CHTTPSessionProxy::CleanRequest(const ProxyAuthSchemePtr& scheme)
{
    return CleanWith(scheme, Log("CHTTPSessionProxy::CleanRequest"));
}

bool CHTTPSessionProxy::CleanWith(const ProxyAuthSchemePtr& scheme, const OperationLog& log) const
{
    if (!scheme) {
        log.Trace("False, authScheme null.");
        return false;
    }
    return scheme->CleanRequest();
}

} // namespace vantor
