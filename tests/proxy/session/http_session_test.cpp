#include "proxy/session/http_session.h"

#include "support/proxy_test.h"

namespace vantor {

TEST_F(ProxyTest, SessionsWithAndWithoutAScheme)
{
    m_manager.InitConfig({});
    EXPECT_TRUE(m_manager.InitRequest(nullptr, m_request, L"u", nullptr));
    EXPECT_TRUE(m_manager.CleanRequest(nullptr));
    EXPECT_FALSE(Logged("T CHTTPSession::InitRequest: False, authScheme null."));
    EXPECT_TRUE(InitRequest());
    EXPECT_TRUE(m_manager.CleanRequest(m_none));
    EXPECT_TRUE(Logged("T CHTTPSession::InitRequest: False, authScheme null."));
    EXPECT_TRUE(Logged("T CHTTPSession::CleanRequest: False, authScheme null."));

    m_manager.InitConfig(AutoProxy());
    EXPECT_TRUE(m_manager.InitRequest(nullptr, m_request, L"u", nullptr));
    EXPECT_FALSE(m_manager.CleanRequest(nullptr));
    EXPECT_TRUE(Logged("T CHTTPSessionAutoProxy::CleanRequest: False, authScheme null."));

    m_http->errors["Open"] = {12001};
    EXPECT_EQ(m_manager.OpenSession(nullptr), nullptr);
    EXPECT_TRUE(Logged("E CHTTPSession::Open: Failed to open non proxy connection, err=12001"));

    m_manager.InitConfig({.m_address = L"proxy"});
    EXPECT_FALSE(m_manager.InitRequest(nullptr, m_request, L"u", nullptr) || m_manager.CleanRequest(nullptr));
    EXPECT_TRUE(Logged("T CHTTPSessionProxy::InitRequest: False, authScheme null."));
    EXPECT_TRUE(Logged("T CHTTPSessionProxy::CleanRequest: False, authScheme null."));

    CHTTPProxyManager without(nullptr, Windows(), m_log, L"Agent");
    without.InitConfig(AutoProxy());
    EXPECT_EQ(without.OpenSession(nullptr), nullptr);
    EXPECT_FALSE(without.InitRequest(nullptr, m_request, L"u", m_none));
    EXPECT_FALSE(without.CleanRequest(m_none));
}

} // namespace vantor
