#include "proxy/http_proxy_manager.h"

#include "support/proxy_test.h"

namespace vantor {

TEST_F(ProxyTest, TheConfigurationChoosesTheSession)
{
    EXPECT_EQ(m_manager.OpenSession(nullptr), nullptr);
    EXPECT_TRUE(Logged("T CHTTPProxyManager::OpenSession: Current session type is not valid."));

    m_manager.InitConfig({});
    EXPECT_TRUE(Logged("T CHTTPProxyManager::InitConfig: setting current session type to DirectSession"));
    EXPECT_TRUE(m_manager.Config().m_repAuthSchemes.empty());

    ProxyConfig both = AutoProxy();
    both.m_address = L"proxy:8080";
    m_manager.InitConfig(both); // an address takes precedence over discovery
    EXPECT_TRUE(Logged("T CHTTPProxyManager::InitConfig: setting current session type to NamedSessionProxy"));
}

TEST_F(ProxyTest, FallsBackOnceUntilTheFallbackIsCleared)
{
    m_manager.InitConfig({.m_proxyTimeoutFallbackToDirect = true});
    EXPECT_FALSE(m_manager.ShouldFallBack());
    EXPECT_TRUE(Logged("T CHTTPProxyManager::ShouldFallBack: false, configuration doesn't support proxy."));

    ProxyConfig config = AutoProxy();
    config.m_proxyTimeoutFallbackToDirect = false;
    m_manager.InitConfig(config);
    EXPECT_FALSE(m_manager.ShouldFallBack());
    EXPECT_TRUE(Logged("T CHTTPProxyManager::ShouldFallBack: false, fallback configured to direct."));

    m_manager.InitConfig(AutoProxy());
    EXPECT_FALSE(m_manager.ClearFallBack());
    EXPECT_TRUE(m_manager.ShouldFallBack());
    EXPECT_FALSE(m_manager.ShouldFallBack());
    EXPECT_TRUE(Logged("T CHTTPProxyManager::ShouldFallBack: false, non-null sessionPtr value do not fall back."));
    EXPECT_TRUE(InitRequest());
    EXPECT_EQ(m_discovery->calls, ""); // direct now

    EXPECT_TRUE(m_manager.ClearFallBack());
    EXPECT_TRUE(InitRequest());
    EXPECT_EQ(m_discovery->calls, "Detect https://h 3 -;"); // the proxy session again
    EXPECT_TRUE(m_manager.ShouldFallBack());
    m_manager.InitConfig(AutoProxy());
    EXPECT_FALSE(m_manager.IsFallbackInForce());
}

} // namespace vantor
