#include "support/proxy_test.h"

#include "proxy/session/http_session_named_proxy.h"

namespace vantor {
namespace {

TEST_F(ProxyTest, TheNamedSessionOpensWithTheNameThatItDetermines)
{
    using Answers = std::map<std::wstring, std::uint32_t>;
    const std::wstring proxy = L"proxy@" + std::to_wstring(0x0200007F); // asked at 127.0.0.2, as the network has it
    const Answers noText = {{L"dns", 0x0200007F}, {proxy, 0}};
    const struct {
        const wchar_t* dnsServer;
        Answers answers;
        const char *calls, *line;
    } kCases[] = {
        {L"", {}, "Open 3 proxy;", "T No DNS server provided, use configured proxy address as-is = proxy"},
        {L"dns", {{proxy, 1}}, "", "T False, failed to obtain IP address for the DNS server itself."},
        {L"dns", {{proxy, 1}}, "", "T False, Failed to lookup proxyname via DNS server."},
        {L"dns", {{L"dns", 0x0200007F}}, "", "T False, Failed to lookup proxyname via DNS server."},
        {L"dns", noText, "",
         "T False, Failed to convert IPv4  Internet network address into a string in Internet standard format."},
        {L"dns", {{L"dns", 0x0200007F}, {proxy, 0x0302010A}}, "Open 3 10.1.2.3;", "T ProxyName = 10.1.2.3"},
    };
    for (const auto& row : kCases) {
        m_resolver->answers = row.answers;
        m_manager.InitConfig({.m_address = L"proxy", .m_dnsServer = row.dnsServer, .m_proxyTimeout = 7});
        m_log->lines.clear();
        m_http->calls.clear();
        std::uint32_t timeout = 5;
        m_manager.OpenSession(&timeout);
        EXPECT_EQ(m_http->calls, row.calls);
        EXPECT_EQ(timeout, 7u); // also where it does not open
        EXPECT_TRUE(Logged(std::string(row.line).insert(2, "CHTTPSessionNamedProxy::DetermineProxyName: ")))
            << row.line;
    }
    EXPECT_FALSE(CHTTPSessionNamedProxy(ProxyHost{m_http, Windows(), m_log, L"Agent", {}}).DetermineProxyName(nullptr));
    EXPECT_TRUE(Logged("T CHTTPSessionNamedProxy::DetermineProxyName: False, proxy address empty"));
    m_resolver->missing = "dnsapi.dll: error 126";
    EXPECT_EQ(m_manager.OpenSession(nullptr), nullptr);
    m_manager.InitConfig({.m_address = L"proxy"}); // needs neither
    m_http->errors["Open"] = {12001};
    std::uint32_t timeout = 5;
    EXPECT_EQ(m_manager.OpenSession(&timeout), nullptr);
    EXPECT_EQ(timeout, 5u);
    EXPECT_TRUE(Logged("E CHTTPSessionNamedProxy::Open: Failed to open named proxy proxy, err=12001"));
}

TEST(NameResolver, TheAddressBehindAnAliasIsTaken)
{
    DNS_RECORD address{.wType = DNS_TYPE_A, .Data = {.A = {7}}};
    const DNS_RECORD alias{.pNext = &address, .wType = DNS_TYPE_CNAME};
    EXPECT_EQ(FirstAddress(&alias), 7u);
    EXPECT_EQ(WindowsNameResolver().Missing(), "");
}

TEST_F(ProxyTest, InconsistentDiscoveryIsRefusedWithoutAskingWindows)
{
    const std::tuple<std::uint32_t, std::uint32_t, const wchar_t*, const char*> kCases[] = {
        {1, 4, L"", ""},
        {3, 3, L"", ""},
        {1, 0xFF, L"", "Detect https://h 3 -;"},
        {2, 3, L"u", "Script https://h 0 u;"},
        {3, 1, L"u", "Detect https://h 1 u;"},
    };
    for (const auto& [flags, detectFlags, url, asked] : kCases) {
        m_discovery->calls.clear();
        m_http->calls.clear();
        m_manager.InitConfig({.m_wpadFlags = flags, .m_wpadDetectFlags = detectFlags, .m_wpadConfigUrl = url});
        EXPECT_EQ(!InitRequest(), *asked == '\0') << flags << " " << detectFlags;
        EXPECT_EQ(m_discovery->calls, asked);
        EXPECT_EQ(m_http->calls, *asked ? "SetOption 38 3 p -;" : "");
    }
    m_http->errors["SetOption 38"] = {12009};
    EXPECT_FALSE(InitRequest());
    EXPECT_TRUE(AutoLogged("InitProxy: SetOption failed: ERROR_WINHTTP_INVALID_OPTION"));
}

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
