#include "proxy/http_proxy_manager.h"
#include "proxy/proxy_auth_list_manager.h"
#include "scripted_http.h"

namespace vantor {
namespace {

class FakeRequest : public IProxiedRequest {
public:
    HINTERNET Handle() const override { return nullptr; }
    DWORD ReportedError() const override { return reportedError; }
    DWORD QueryStatusCode(DWORD& code) override { return code = status, queryError; }
    BOOL QueryAuthSchemes(DWORD& supported, DWORD& first, DWORD& target) override
    {
        ++queries;
        supported = 3;
        first = 2;
        target = 1;
        ::SetLastError(authError);
        return authError == ERROR_SUCCESS;
    }
    BOOL SetCredentials(DWORD target, DWORD scheme, const wchar_t* user, const wchar_t* password) override
    {
        credentials = std::to_wstring(target) + L" " + std::to_wstring(scheme) + L" " + user + L" " + password;
        return TRUE;
    }

    DWORD reportedError = 0;
    DWORD status = 407;
    DWORD queryError = 0;
    DWORD authError = 0;
    int queries = 0;
    std::wstring credentials;
};

class ProxyManagerTest : public HttpTest {
protected:
    static ProxyConfig AutoProxy()
    {
        return {.m_wpadFlags = WINHTTP_AUTOPROXY_AUTO_DETECT,
                .m_wpadDetectFlags = 3,
                .m_proxyTimeoutFallbackToDirect = true};
    }

    DWORD InitRequest() { return m_manager.InitRequest(nullptr, m_request, L"https://h", m_none); }

    CHTTPProxyManager m_manager{m_http, m_discovery, m_log, L"Agent"};
    ProxyAuthSchemePtr m_none = std::make_shared<CHTTPProxyAuthNone>(m_log);
    FakeRequest m_request;
};

TEST_F(ProxyManagerTest, TheConfigurationChoosesTheSession)
{
    EXPECT_EQ(m_manager.OpenSession(nullptr), nullptr);
    EXPECT_TRUE(Logged("T CHTTPProxyManager::OpenSession: Current session type is not valid."));

    m_manager.InitConfig({});
    EXPECT_TRUE(Logged("T CHTTPProxyManager::InitConfig: setting current session type to DirectSession"));
    EXPECT_TRUE(m_manager.Config().m_repAuthSchemes.empty());

    ProxyConfig config = AutoProxy();
    m_manager.InitConfig(config);
    EXPECT_TRUE(Logged("T CHTTPProxyManager::InitConfig: setting current session type to AutoSessionProxy"));
    EXPECT_EQ(m_manager.Config().m_repAuthSchemes, std::vector<std::uint32_t>{0});

    config.m_address = L"proxy:8080";
    config.m_wpadAutoLogon = true;
    config.m_username = L"me";
    config.m_password = L"secret";
    config.m_repAuthSchemes = {4, 3};
    m_manager.InitConfig(config); // an address takes precedence over discovery
    EXPECT_TRUE(Logged("T CHTTPProxyManager::InitConfig: setting current session type to NamedSessionProxy"));
    EXPECT_TRUE(Logged("T CHTTPProxyManager::InitConfig: proxy:8080 wpad flags: 1 wpad detect flags: 3 wpad config "
                       "url:  wpad auto logon: true username: me password: secret authentication schemes: 4 3  "
                       "user handle: 0 DNS server: "));
    m_manager.SetCredentials(WINHTTP_AUTH_SCHEME_NTLM, m_request);
    EXPECT_EQ(m_request.credentials, L"1 2 me secret");
    EXPECT_TRUE(Logged("T CHTTPProxyManager::SetCredentials:  for proxy Auth Scheme = "));
}

TEST_F(ProxyManagerTest, FallsBackOnceUntilTheFallbackIsCleared)
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
    EXPECT_NE(InitRequest(), 0u);
    EXPECT_TRUE(m_discovery->asked.empty()); // direct now

    EXPECT_TRUE(m_manager.ClearFallBack());
    EXPECT_NE(InitRequest(), 0u);
    EXPECT_EQ(m_discovery->asked, std::vector<std::wstring>{L"https://h"}); // the proxy session again
    EXPECT_TRUE(m_manager.ShouldFallBack());
    m_manager.InitConfig(AutoProxy());
    EXPECT_FALSE(m_manager.IsFallbackInForce());
}

TEST_F(ProxyManagerTest, TheAutoProxySessionSetsWhatItFinds)
{
    ProxyConfig config = AutoProxy();
    config.m_wpadDetectFlags = 0xFF;
    config.m_wpadAutoLogon = true;
    m_manager.InitConfig(config);
    m_log->lines.clear();
    EXPECT_NE(InitRequest(), 0u);
    EXPECT_EQ(m_discovery->lastOptions.dwAutoDetectFlags, 3u);
    EXPECT_TRUE(m_discovery->lastOptions.fAutoLogonIfChallenged);
    EXPECT_EQ(m_discovery->lastOptions.lpszAutoConfigUrl, nullptr);
    EXPECT_EQ(Calls("SetOption 38 size 24"), 1);
    EXPECT_EQ(m_log->lines, (Lines{"T Enter: CHTTPProxyManager::InitRequest",
                                   "T CHTTPSessionAutoProxy::InitProxy: WinHttpGetProxyForUrl() called for https://h",
                                   "T CHTTPSessionAutoProxy::InitProxy: Autoproxy dwAccessType: 3",
                                   "T CHTTPSessionAutoProxy::InitProxy: Autoproxy lpszProxy: p",
                                   "T CHTTPSessionAutoProxy::InitProxy: Autoproxy lpszProxyBypass: <null>",
                                   "T Exit : CHTTPProxyManager::InitRequest"}));

    m_http->errors["SetOption 38"] = {12009};
    EXPECT_EQ(InitRequest(), 0u);
    EXPECT_TRUE(Logged("T CHTTPSessionAutoProxy::InitProxy: SetOption failed: ERROR_WINHTTP_INVALID_OPTION"));
}

TEST_F(ProxyManagerTest, InconsistentDiscoveryIsRefusedWithoutAskingWindows)
{
    const struct {
        std::uint32_t flags, detectFlags;
        const wchar_t* url;
        bool refused;
    } kCases[] = {
        {1, 4, L"", true}, {1, 0, L"u", true},  {2, 3, L"", true},
        {3, 3, L"", true}, {2, 0, L"u", false}, {3, 1, L"u", false},
    };
    for (const auto& [flags, detectFlags, url, refused] : kCases) {
        m_discovery->asked.clear();
        m_http->calls.clear();
        ProxyConfig config = AutoProxy();
        config.m_wpadFlags = flags;
        config.m_wpadDetectFlags = detectFlags;
        config.m_wpadConfigUrl = url;
        m_manager.InitConfig(config);
        EXPECT_EQ(InitRequest() == 0, refused) << flags << " " << detectFlags;
        EXPECT_EQ(m_discovery->asked.empty(), refused);
        EXPECT_EQ(m_http->calls.empty(), refused);
    }
}

TEST_F(ProxyManagerTest, SessionsWithAndWithoutAScheme)
{
    m_manager.InitConfig({});
    m_log->lines.clear();
    EXPECT_EQ(m_manager.InitRequest(nullptr, m_request, L"u", nullptr), 1u);
    EXPECT_EQ(m_manager.CleanRequest(nullptr), 1u);
    EXPECT_FALSE(Logged("T CHTTPSession::InitRequest: False, authScheme null."));
    EXPECT_EQ(InitRequest(), 1u);
    EXPECT_EQ(m_manager.CleanRequest(m_none), 1u);
    EXPECT_TRUE(Logged("T CHTTPSession::InitRequest: False, authScheme null."));
    EXPECT_TRUE(Logged("T CHTTPSession::CleanRequest: False, authScheme null."));

    m_manager.InitConfig(AutoProxy());
    EXPECT_NE(m_manager.InitRequest(nullptr, m_request, L"u", nullptr), 0u);
    EXPECT_EQ(m_manager.CleanRequest(nullptr), 0u);
    EXPECT_TRUE(Logged("T CHTTPSessionAutoProxy::CleanRequest: False, authScheme null."));

    m_http->errors["Open"] = {12001};
    EXPECT_EQ(m_manager.OpenSession(nullptr), nullptr);
    EXPECT_TRUE(Logged("E CHTTPSession::Open: Failed to open non proxy connection, err=12001"));

    CHTTPProxyManager without(nullptr, m_discovery, m_log, L"Agent");
    without.InitConfig(AutoProxy());
    EXPECT_EQ(without.InitRequest(nullptr, m_request, L"u", m_none), 0u);
    EXPECT_EQ(without.CleanRequest(m_none), 0u);
    EXPECT_EQ(without.OpenSession(nullptr), nullptr);
}

class AuthListTest : public ProxyManagerTest {
protected:
    std::unique_ptr<C_HTTPProxyAuthListManager> ListFor(std::vector<std::uint32_t> schemes)
    {
        ProxyConfig config = AutoProxy();
        config.m_repAuthSchemes = std::move(schemes);
        m_manager.InitConfig(config);
        return std::make_unique<C_HTTPProxyAuthListManager>(m_manager, m_log);
    }

    bool ListLogged(const std::string& message) const { return Logged("T C_HTTPProxyAuthListManager::" + message); }
};

TEST_F(AuthListTest, OneSchemeIsTriedOnce)
{
    const auto list = ListFor({0});
    EXPECT_NE(list->InitRequest(nullptr, m_request, L"u"), 0u);
    EXPECT_EQ(list->CleanRequest(), 1u);
    EXPECT_EQ(list->CleanRequest(), 0u);
    list->FindNextAuthenticationScheme(m_request);
    EXPECT_FALSE(list->WantsAnotherAttempt());
    EXPECT_EQ(m_request.queries, 0);
}

TEST_F(AuthListTest, TheFirstChallengeIsAskedForTheProxysSchemesOnce)
{
    const auto list = ListFor({0, 7});
    list->InitRequest(nullptr, m_request, L"u");
    list->FindNextAuthenticationScheme(m_request);
    EXPECT_EQ(m_request.queries, 1);
    EXPECT_TRUE(ListLogged("FindNextAuthenticationScheme: The proxy server returned, supported authentication schemes "
                           "= 3. First authentication scheme listed by the server = 2. Authentication target = 1"));
    EXPECT_TRUE(ListLogged("MatchMsAuthenticationSchemes: MSAuthScheme=1 RepAuthScheme=0 do not match"));
    EXPECT_TRUE(ListLogged("MatchMsAuthenticationSchemes: MSAuthScheme=2 RepAuthScheme=7 do not match"));
    EXPECT_TRUE(ListLogged("LookUpAuthenticationSchemeByRepAuthenticationScheme: Rep auth scheme is 7"));
    EXPECT_FALSE(list->WantsAnotherAttempt());

    list->FindNextAuthenticationScheme(m_request);
    EXPECT_EQ(m_request.queries, 1);
    EXPECT_TRUE(ListLogged("FindNextAuthenticationScheme: Proxy server already queried for supported MS authentication "
                           "scheme."));
}

TEST_F(AuthListTest, AnythingButAChallengeEndsTheAttempts)
{
    const struct {
        DWORD reportedError, queryError, status, authError;
        const char* line;
    } kCases[] = {
        {12002, 0, 407, 0, "QueryHeader() Failure = 0, clearing all rep authentication schemas."},
        {0, 12150, 407, 0, "QueryHeader() Failure = 407, clearing all rep authentication schemas."},
        {0, 0, 200, 0, "QueryHeader() Failure = 200, clearing all rep authentication schemas."},
        {0, 0, 407, 12004, "QueryAuthSchemes() failed, err=12004"},
    };
    for (const auto& [reportedError, queryError, status, authError, line] : kCases) {
        const auto list = ListFor({0, 1});
        EXPECT_TRUE(list->WantsAnotherAttempt());
        m_request.reportedError = reportedError;
        m_request.queryError = queryError;
        m_request.status = status;
        m_request.authError = authError;
        list->FindNextAuthenticationScheme(m_request);
        EXPECT_TRUE(ListLogged("FindNextAuthenticationScheme: " + std::string(line))) << line;
        EXPECT_EQ(list->WantsAnotherAttempt(), authError != 0); // what waits is given up, but for the last row
    }
}

TEST_F(AuthListTest, AFallbackInForceStartsWithoutSchemes)
{
    const auto before = ListFor({0, 1});
    ASSERT_TRUE(m_manager.ShouldFallBack());
    C_HTTPProxyAuthListManager list(m_manager, m_log);
    EXPECT_EQ(list.InitRequest(nullptr, m_request, L"u"), 1u);
    EXPECT_TRUE(ListLogged("InitRequest: No rep authentication configured."));
    EXPECT_FALSE(Logged("T CHTTPSession::InitRequest: False, authScheme null."));
}

} // namespace
} // namespace vantor
