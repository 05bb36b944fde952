#include "proxy/auth/proxy_auth_scheme.h"

#include "platform/owner.h"
#include "run/log/operation_log.h"

#include <utility>

namespace vantor {

CHTTPProxyAuthScheme::CHTTPProxyAuthScheme(std::shared_ptr<ILogger> logger, DWORD msScheme, const char* constructor,
                                           const char* message)
    : m_logger(std::move(logger)), m_msScheme(msScheme)
{
    OperationLog(m_logger, constructor).Trace(message);
}

bool CHTTPProxyAuthScheme::InitRequest(const ProxyHost&, HttpRequest&)
{
    return true;
}

bool CHTTPProxyAuthScheme::CleanRequest()
{
    return true;
}

bool CHTTPProxyAuthScheme::SetCredentials(const ProxyHost& host, HttpRequest& request) const
{
    const bool set = host.SetCredentials(m_msScheme, request);
    const LastErrorKeeper error;
    OperationLog(m_logger, "CHTTPProxyAuthScheme::SetCredentials")
        .Trace("AuthScheme=" + std::to_string(m_msScheme) + " succeded=" + (set ? "true" : "false") +
               " err=" + std::to_string(error.Error()));
    return set;
}

CHTTPProxyAuthNone::CHTTPProxyAuthNone(std::shared_ptr<ILogger> logger)
    : CHTTPProxyAuthScheme(std::move(logger), 0, "CHTTPProxyAuthNone::CHTTPProxyAuthNone",
                           "Proxy Authentication scheme = WINHTTP_AUTH_SCHEME_NONE")
{
}

CHTTPProxyAuthBasic::CHTTPProxyAuthBasic(std::shared_ptr<ILogger> logger)
    : CHTTPProxyAuthByPassword(std::move(logger), WINHTTP_AUTH_SCHEME_BASIC, "CHTTPProxyAuthBasic::CHTTPProxyAuthBasic",
                               "Proxy Authentication scheme = WINHTTP_AUTH_SCHEME_BASIC")
{
}

CHTTPProxyAuthNTLM::CHTTPProxyAuthNTLM(std::shared_ptr<ILogger> logger)
    : CHTTPProxyAuthByPassword(std::move(logger), WINHTTP_AUTH_SCHEME_NTLM, "CHTTPProxyAuthNTLM::CHTTPProxyAuthNTLM",
                               "Proxy Authentication scheme = WINHTTP_AUTH_SCHEME_NTLM")
{
}

CHTTPProxyAuthKerberos::CHTTPProxyAuthKerberos(std::shared_ptr<ILogger> logger)
    : CHTTPProxyAuthByPassword(std::move(logger), WINHTTP_AUTH_SCHEME_NEGOTIATE,
                               "CHTTPProxyAuthKerberos::CHTTPProxyAuthKerberos",
                               "Proxy Authentication Scheme = WINHTTP_AUTH_SCHEME_NEGOTIATE")
{
}

} // namespace vantor
