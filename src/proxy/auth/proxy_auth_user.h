// Proxy authentication as the logged-on user.
#pragma once

#include "proxy/auth/proxy_auth_scheme.h"

namespace vantor {

class UserImpersonation;

/// REP_PROXY_AUTH_SCHEME_CURRENT_USER: the thread impersonates that user for the attempt, so that WinHTTP uses the
/// user's logon. No user name or password is set.
class CHTTPProxyAuthUser : public CHTTPProxyAuthScheme {
public:
    /// The impersonator may be null; otherwise it must outlive the scheme.
    CHTTPProxyAuthUser(std::shared_ptr<ILogger> logger, UserImpersonation* impersonator);
    ~CHTTPProxyAuthUser() override; ///< ends an impersonation that an exception left active

    bool InitRequest(const ProxyHost& host, HttpRequest& request) override;
    bool CleanRequest() override;

private:
    void EndImpersonation() noexcept;

    UserImpersonation* m_impersonator;
};

} // namespace vantor
