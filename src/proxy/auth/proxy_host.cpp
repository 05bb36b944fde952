#include "proxy/auth/proxy_host.h"

#include "run/log/operation_log.h"

namespace vantor {

bool ProxyHost::SetCredentials(DWORD authScheme, HttpRequest& request) const
{
    const TracedOperation log(logger, "CHTTPProxyManager::SetCredentials");
    log.Trace(" for proxy Auth Scheme = ");
    return request.SetCredentials(WINHTTP_AUTH_TARGET_PROXY, authScheme, config.m_username.c_str(),
                                  config.m_password.c_str());
}

} // namespace vantor
