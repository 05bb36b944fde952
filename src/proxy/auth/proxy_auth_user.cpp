#include "proxy/auth/proxy_auth_user.h"

#include "platform/owner.h"
#include "proxy/user/user_impersonation.h"
#include "run/log/operation_log.h"

#include <utility>

namespace vantor {

CHTTPProxyAuthUser::CHTTPProxyAuthUser(std::shared_ptr<ILogger> logger, UserImpersonation* impersonator)
    : CHTTPProxyAuthScheme(std::move(logger), WINHTTP_AUTH_SCHEME_NTLM, "CHTTPProxyAuthUser::CHTTPProxyAuthUser",
                           "Proxy authentication scheme = REP_PROXY_AUTH_SCHEME_CURRENT_USER"),
      m_impersonator(impersonator)
{
}

CHTTPProxyAuthUser::~CHTTPProxyAuthUser()
{
    EndImpersonation();
}

bool CHTTPProxyAuthUser::InitRequest(const ProxyHost& host, HttpRequest& request)
{
    const OperationLog log(Logger(), "CHTTPProxyAuthUser::InitRequest");
    if (!m_impersonator) {
        log.Trace("m_impersonator is null.");
        return false;
    }
    // It is not known which option this call was meant to set. WinHTTP rejects option 0, so the scheme always fails
    // here.
    if (!m_impersonator->Impersonate(host.config.m_currentUser) || !request.SetOption(0, nullptr, 0)) {
        const LastErrorKeeper keeper;
        log.Trace("Automatic logon failed.");
        EndImpersonation();
        return false;
    }
    return true;
}

bool CHTTPProxyAuthUser::CleanRequest()
{
    EndImpersonation();
    return true;
}

void CHTTPProxyAuthUser::EndImpersonation() noexcept
{
    if (m_impersonator) {
        m_impersonator->UnImpersonate();
    }
}

} // namespace vantor
