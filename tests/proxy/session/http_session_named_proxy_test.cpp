#include "proxy/session/http_session_named_proxy.h"

#include "support/proxy_test.h"

namespace vantor {

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

} // namespace vantor
