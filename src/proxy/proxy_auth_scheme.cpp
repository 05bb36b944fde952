#include "proxy/proxy_auth_scheme.h"

#include "run/operation_log.h"

#include <utility>

namespace vantor {

CHTTPProxyAuthScheme::CHTTPProxyAuthScheme(std::shared_ptr<ILogger> logger, DWORD msScheme)
    : m_logger(std::move(logger)), m_msScheme(msScheme)
{
}

DWORD CHTTPProxyAuthScheme::InitRequest(IProxyAuthHost&, IProxiedRequest&)
{
    return 1;
}

DWORD CHTTPProxyAuthScheme::CleanRequest()
{
    return 1;
}

CHTTPProxyAuthNone::CHTTPProxyAuthNone(std::shared_ptr<ILogger> logger) : CHTTPProxyAuthScheme(std::move(logger), 0)
{
    OperationLog(Logger(), "CHTTPProxyAuthNone::CHTTPProxyAuthNone")
        .Trace("Proxy Authentication scheme = WINHTTP_AUTH_SCHEME_NONE");
}

} // namespace vantor
