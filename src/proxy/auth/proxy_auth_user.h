// Authentication to a proxy as the logged-on user.
#pragma once

#include "proxy/auth/proxy_auth_scheme.h"

namespace vantor {

class IUserImpersonator;

/// REP_PROXY_AUTH_SCHEME_CURRENT_USER: the thread acts as that user for the attempt, whose logon WinHTTP then uses; no
/// user name and no password are set.
class CHTTPProxyAuthUser : public CHTTPProxyAuthScheme {
public:
    /// The impersonator, which may be null, outlives the scheme.
    CHTTPProxyAuthUser(std::shared_ptr<ILogger> logger, IUserImpersonator* impersonator);
    ~CHTTPProxyAuthUser() override; ///< ends an impersonation that an exception left in force

    DWORD InitRequest(IProxyAuthHost& host, IProxiedRequest& request) override;
    DWORD CleanRequest() override;

private:
    void EndImpersonation() noexcept;

    IUserImpersonator* m_impersonator;
};

} // namespace vantor
