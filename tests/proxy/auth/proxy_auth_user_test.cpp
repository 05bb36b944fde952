#include "proxy/auth/proxy_auth_user.h"

#include "support/proxy_test.h"

namespace vantor {

TEST_F(ProxyTest, TheCurrentUsersSchemeNeverLeavesTheThreadImpersonating)
{
    const ProxyHost host{m_http, Windows(), m_log, L"Agent", {.m_currentUser = &m_request}};
    EXPECT_FALSE(CHTTPProxyAuthUser(m_log, nullptr).InitRequest(host, m_request));
    EXPECT_TRUE(Logged("T CHTTPProxyAuthUser::InitRequest: m_impersonator is null."));

    const std::string once = "LoadModules;OpenThreadToken 12;Duplicate;Impersonate supplied;Revert;";
    EXPECT_TRUE(CHTTPProxyAuthUser(m_log, &m_manager.Impersonator()).InitRequest(host, m_request));
    EXPECT_EQ(m_tokens->calls, once); // ended without clean-up, as by an exception

    CHTTPProxyAuthUser scheme(m_log, &m_manager.Impersonator());
    m_http->errors["SetOption 0"] = {ERROR_WINHTTP_INVALID_OPTION};
    EXPECT_FALSE(scheme.InitRequest(host, m_request));
    EXPECT_TRUE(Logged("T CHTTPProxyAuthUser::InitRequest: Automatic logon failed."));
    EXPECT_EQ(m_tokens->calls, once + once);
    EXPECT_TRUE(scheme.CleanRequest()); // for the second time, which is harmless
    EXPECT_EQ(m_tokens->calls, once + once);
}

} // namespace vantor
