#include "proxy/session/system_proxy.h"

#include "support/proxy_test.h"

namespace vantor {
namespace {

/// Detection never answers: the system is asked.
class SystemProxyTest : public ProxyTest {
protected:
    SystemProxyTest()
    {
        m_discovery->errors["Detect"].assign(100, ERROR_WINHTTP_TIMEOUT);
        m_config.m_systemProxyDiscovery = true;
    }

    std::string Request(CHTTPProxyManager& manager)
    {
        m_http->calls.clear();
        EXPECT_TRUE(manager.InitRequest(nullptr, m_request, L"https://h", m_none));
        return m_http->calls;
    }

    ProxyConfig m_config = AutoProxy();
};

TEST_F(SystemProxyTest, TheUsersSettingsThenTheMachinesServeAndAreRemembered)
{
    const struct {
        ScriptedDiscovery::UserSettings user;
        const wchar_t* machineProxy;
        const char *failing, *set;
    } kCases[] = {{{L"http://s", L"u", L""}, L"m", "", "3 p -"},
                  {{L"http://s", L"u", L""}, L"m", "Script", "3 m -"},
                  {{nullptr, L"u", L"b"}, L"m", "", "3 u b"},
                  {{nullptr, L"u", L""}, L"m", "", "3 u -"},
                  {{L"", L"", L"b"}, L"m", "", "3 m -"},
                  {{}, L"m", "User", "3 m -"},
                  {{}, nullptr, "", "1 - -"},
                  {{}, L"m", "Machine", "1 - -"}};
    for (const auto& row : kCases) {
        g_world.calls.clear();
        CHTTPProxyManager manager(m_http, Windows(), m_log, L"Agent");
        manager.InitConfig(m_config);
        m_discovery->user = {row.user};
        m_discovery->machineProxy = row.machineProxy;
        m_discovery->errors[row.failing] = {ERROR_WINHTTP_TIMEOUT};
        const std::string set = "SetOption 38 " + std::string(row.set) + ";";
        EXPECT_EQ(Request(manager), set);
        if (row.user[0] && *row.user[0] && !*row.failing) {
            EXPECT_EQ(g_world.calls,
                      "Detect https://h 3 -;LoadModules;OpenThreadToken 12;OpenProcess 1040 31;OpenToken "
                      "11;Impersonate shell;User;Script https://h 0 http://s;Revert;" +
                          set);
        }
        m_discovery->calls.clear();
        EXPECT_EQ(Request(manager), set);
        EXPECT_EQ(m_discovery->calls, "Detect https://h 3 -;"); // the rest is remembered
    }
    EXPECT_EQ(std::exchange(m_discovery->inside, 0), 0);
    m_discovery->knowsOutside = false; // a Windows that runs scripts in this process only
    m_manager.InitConfig(m_config);
    EXPECT_TRUE(InitRequest());
    EXPECT_EQ(m_discovery->inside, 1);
    for (const char* const line :
         {"SystemProxyInfo: System proxy discovered previously",
          "SystemProxyInfo: System proxy discovery failed previously",
          "CurrentUserProxyConfig: User proxy config: Use pac file http://s",
          "CurrentUserProxyConfig: User proxy configuration succeeded.",
          "CurrentUserProxyConfig: No pac file nor proxy found", "CurrentUserProxyConfig: Using named proxy succeeded.",
          "SystemProxyInfo: Failed to retrieve current user proxy config : ERROR_WINHTTP_TIMEOUT",
          "SystemWideProxyConfig: WinHttpGetDefaultProxyConfiguration failed: ERROR_WINHTTP_TIMEOUT"}) {
        EXPECT_TRUE(AutoLogged(std::string("Try") + line)) << line;
    }
}

TEST_F(SystemProxyTest, AnAnswerGrowsOldAfterItsLifeTime)
{
    using Row = std::tuple<std::uint32_t, std::uint64_t, bool>;
    for (const auto& [lifeTime, elapsed, expired] :
         {Row{0, 0, false}, Row{0, 1, true}, Row{60'000, 60'000, false}, Row{60'000, 60'001, true}}) {
        m_config.m_systemProxyLifeTime = lifeTime;
        m_manager.InitConfig(m_config);
        m_discovery->ticks += 100'000; // what the row before found is old
        m_discovery->user = {{nullptr, L"old", nullptr}};
        Request(m_manager);
        m_discovery->user = {{nullptr, L"new", nullptr}};
        m_discovery->ticks += elapsed;
        EXPECT_EQ(Request(m_manager), expired ? "SetOption 38 3 new -;" : "SetOption 38 3 old -;");
    }
    EXPECT_TRUE(AutoLogged("TrySystemProxyInfo: proxyConfig.m_systemProxyLifeTime expired 60000"));

    m_discovery->ticks += 100'000;
    m_discovery->user.clear(); // an exception ends the impersonation
    EXPECT_THROW(InitRequest(), std::out_of_range);
    EXPECT_TRUE(m_tokens->calls.ends_with("Impersonate shell;Revert;")) << m_tokens->calls;
}

} // namespace
} // namespace vantor
