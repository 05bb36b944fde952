#include "proxy/session/http_session_auto_proxy.h"

#include "support/proxy_test.h"

namespace vantor {

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

} // namespace vantor
