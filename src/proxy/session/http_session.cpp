#include "proxy/session/http_session.h"

#include <utility>

namespace vantor {

CHTTPSession::CHTTPSession(ISessionHost& host, std::shared_ptr<ILogger> logger)
    : m_host(host), m_logger(std::move(logger))
{
}

void CHTTPSession::LogName(const char* constructor) const
{
    if (m_logger) {
        m_logger->Log(LogLevel::trace, constructor);
    }
}

HINTERNET CHTTPSession::Open(std::uint32_t*, std::uint32_t)
{
    const HINTERNET session =
        m_host.Http().Open(m_host.UserAgent().c_str(), WINHTTP_ACCESS_TYPE_NO_PROXY, nullptr, nullptr, 0);
    if (!session) {
        const DWORD error = ::GetLastError();
        Log("CHTTPSession::Open").Error("Failed to open non proxy connection, err=" + std::to_string(error));
    }
    return session;
}

DWORD CHTTPSession::InitRequest(HINTERNET, IProxiedRequest&, const std::wstring&, const ProxyAuthSchemePtr& scheme)
{
    if (scheme) { // the message is old; support knows it
        Log("CHTTPSession::InitRequest").Trace("False, authScheme null.");
    }
    return 1;
}

DWORD CHTTPSession::CleanRequest(const ProxyAuthSchemePtr& scheme)
{
    if (scheme) {
        Log("CHTTPSession::CleanRequest").Trace("False, authScheme null.");
    }
    return 1;
}

CHTTPSessionProxy::CHTTPSessionProxy(ISessionHost& host, std::shared_ptr<ILogger> logger)
    : CHTTPSession(host, std::move(logger))
{
    LogName("CHTTPSessionProxy::CHTTPSessionProxy");
}

DWORD CHTTPSessionProxy::InitRequest(HINTERNET, IProxiedRequest& request, const std::wstring&,
                                     const ProxyAuthSchemePtr& scheme)
{
    if (!scheme) {
        Log("CHTTPSessionProxy::InitRequest").Trace("False, authScheme null.");
        return 0;
    }
    return scheme->InitRequest(Host(), request);
}

DWORD CHTTPSessionProxy::CleanRequest(const ProxyAuthSchemePtr& scheme)
{
    return CleanWith(scheme, Log("CHTTPSessionProxy::CleanRequest"));
}

DWORD CHTTPSessionProxy::CleanWith(const ProxyAuthSchemePtr& scheme, const OperationLog& log) const
{
    if (!scheme) {
        log.Trace("False, authScheme null.");
        return 0;
    }
    return scheme->CleanRequest();
}

} // namespace vantor
