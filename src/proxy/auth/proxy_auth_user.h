// Authentication to a proxy as the logged-on user.
#pragma once

#include "proxy/auth/proxy_auth_scheme.h"

namespace vantor {

class UserImpersonation;

/// REP_PROXY_AUTH_SCHEME_CURRENT_USER: the thread acts as that user for the attempt, whose logon WinHTTP then uses; no
/// user name and no password are set.
class CHTTPProxyAuthUser : public CHTTPProxyAuthScheme {
public:
    /// The impersonator, which may be null, outlives the scheme.
    CHTTPProxyAuthUser(std::shared_ptr<ILogger> logger, UserImpersonation* impersonator);
    ~CHTTPProxyAuthUser() override; ///< ends an impersonation that an exception left in force

    bool InitRequest(const ProxyHost& host, HttpRequest& request) override;
    bool CleanRequest() override;

private:
    void EndImpersonation() noexcept;

    UserImpersonation* m_impersonator;
};

} // namespace vantor
