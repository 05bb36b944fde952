#include "proxy/auth/proxy_auth_user.h"

#include "platform/owner.h"
#include "proxy/user/user_impersonator.h"
#include "run/log/operation_log.h"

#include <utility>

namespace vantor {

CHTTPProxyAuthUser::CHTTPProxyAuthUser(std::shared_ptr<ILogger> logger, IUserImpersonator* impersonator)
    : CHTTPProxyAuthScheme(std::move(logger), WINHTTP_AUTH_SCHEME_NTLM, "CHTTPProxyAuthUser::CHTTPProxyAuthUser",
                           "Proxy authentication scheme = REP_PROXY_AUTH_SCHEME_CURRENT_USER"),
      m_impersonator(impersonator)
{
}

CHTTPProxyAuthUser::~CHTTPProxyAuthUser()
{
    EndImpersonation();
}

DWORD CHTTPProxyAuthUser::InitRequest(IProxyAuthHost& host, IProxiedRequest& request)
{
    const OperationLog log(Logger(), "CHTTPProxyAuthUser::InitRequest");
    if (!m_impersonator) {
        log.Trace("m_impersonator is null.");
        return 0;
    }
    if (!m_impersonator->Impersonate(host.Config().m_currentUser) || !request.SetOption(0, nullptr, 0)) {
        const LastErrorKeeper keeper;
        log.Trace("Automatic logon failed.");
        EndImpersonation();
        return 0;
    }
    return 1;
}

DWORD CHTTPProxyAuthUser::CleanRequest()
{
    EndImpersonation();
    return 1;
}

void CHTTPProxyAuthUser::EndImpersonation() noexcept
{
    if (m_impersonator) {
        m_impersonator->UnImpersonate();
    }
}

} // namespace vantor
