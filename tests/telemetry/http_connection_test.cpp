#include "telemetry/http_connection.h"
#include "recording_logger.h"
#include "scripted_http.h"
#include "test_certificates.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

/// Finds no proxy, as a network without automatic configuration does.
class NoProxyDiscovery : public IProxyDiscovery {
public:
    BOOL GetProxyForUrl(HINTERNET, const wchar_t*, WINHTTP_AUTOPROXY_OPTIONS&, WINHTTP_PROXY_INFO&) override
    {
        ::SetLastError(ERROR_WINHTTP_AUTODETECTION_FAILED);
        return FALSE;
    }
};

class Shortener : public ICompressor {
public:
    std::string Compress(std::string_view body) override { return "<" + std::string(body.substr(0, 1)) + ">"; }
};

class HttpConnectionTest : public ::testing::Test {
protected:
    HttpConnectionTest()
    {
        m_settings.http = {L"service.example", 443, L"Agent", 100};
        m_settings.timeouts = {1, 2, 3, 4};
        m_settings.proxy.m_wpadFlags = WINHTTP_AUTOPROXY_AUTO_DETECT;
        m_settings.proxy.m_wpadDetectFlags = WINHTTP_AUTO_DETECT_TYPE_DNS_A;
        m_settings.proxy.m_proxyTimeoutFallbackToDirect = true;
        m_settings.pinCertificates = false;
        m_settings.proxyDiscovery = std::make_shared<NoProxyDiscovery>();
    }

    HttpConnection Connect() { return HttpConnection(std::move(m_settings), m_http, m_log); }

    std::string ConstructionFailure(std::shared_ptr<IHTTP> http)
    {
        HttpConnectionSettings settings;
        settings.http = m_settings.http;
        try {
            HttpConnection connection(std::move(settings), http, m_log);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return {};
    }

    HttpResponse Query(std::optional<std::string_view> body = "body")
    {
        HttpResponse response;
        HttpConnection connection = Connect();
        m_http->calls.clear();
        connection.Query({L"/1", L"POST"}, {}, body, response);
        return response;
    }

    HttpConnectionSettings m_settings;
    std::shared_ptr<ScriptedHttp> m_http = std::make_shared<ScriptedHttp>();
    std::shared_ptr<RecordingLogger> m_log = std::make_shared<RecordingLogger>();
};

TEST_F(HttpConnectionTest, OpensForTls12Only)
{
    Connect();
    EXPECT_EQ(m_http->calls,
              (std::vector<std::string>{"Open 1", "SetTimeouts 1 2 3 4", "SetOption 84 2048", "SetOption 133 0",
                                        "Connect service.example 443", "CloseHandle 2", "CloseHandle 1"}));
}

TEST_F(HttpConnectionTest, AFailedStepOfOpeningLeavesNothingOpen)
{
    const struct {
        const char* operation;
        const char* call;
        DWORD error;
        bool fails;
    } kCases[] = {
        {"Open", "WinHttpOpen", 12001, true},
        {"SetTimeouts", "WinHttpSetTimeouts", 12018, true},
        {"SetOption 84", "WinHttpSetOption", 12009, true},
        {"SetOption 133", "WinHttpSetOption", 12018, true},
        {"SetOption 133", "WinHttpSetOption", 12009, false}, // an older Windows does not know the option
        {"Connect", "WinHttpConnect", 12005, true},
    };
    for (const auto& [operation, call, error, fails] : kCases) {
        SCOPED_TRACE(std::string(operation) + " " + std::to_string(error));
        m_log->lines.clear();
        m_http->errors[operation] = {error};
        EXPECT_EQ(ConstructionFailure(m_http), fails ? "Reset failed." : "");
        EXPECT_EQ(m_log->Has("E HttpConnection::HttpConnection: Reset failed in HttpConnection::HttpConnection"),
                  fails);
        EXPECT_TRUE(m_log->Has("E HttpConnection::Reset: HttpConnection::Reset " + std::string(call) + " error " +
                               (error == 12001   ? "ERROR_WINHTTP_OUT_OF_HANDLES 12001"
                                : error == 12005 ? "ERROR_WINHTTP_INVALID_URL 12005"
                                : error == 12009 ? "ERROR_WINHTTP_INVALID_OPTION 12009"
                                                 : "ERROR_WINHTTP_INCORRECT_HANDLE_TYPE 12018")));
        EXPECT_EQ(m_http->openHandles, 0);
    }
    EXPECT_EQ(ConstructionFailure(nullptr), "Http implementation is null.");
    EXPECT_TRUE(
        m_log->Has("E HttpConnection::HttpConnection: Http implementation is null in HttpConnection::HttpConnection"));
}

TEST_F(HttpConnectionTest, QuerySendsTheBodyWithItsLength)
{
    m_http->bodyPieces = {"ok"};
    const HttpResponse response = Query();
    EXPECT_EQ(response.result, 0u);
    EXPECT_EQ(response.status, 200u);
    EXPECT_EQ(response.body, (std::vector<std::uint8_t>{'o', 'k'}));
    EXPECT_EQ(m_http->Count("AddRequestHeaders Content-Length: 4"), 1);
    EXPECT_EQ(m_http->Count("SendRequest body"), 1);
    EXPECT_EQ(m_http->Count("ReceiveResponse"), 1);
    EXPECT_TRUE(m_log->Has("T HttpConnection::Query: Executing query, post data body"));
    EXPECT_EQ(m_http->openHandles, 0);
}

TEST_F(HttpConnectionTest, QueryWithoutABody)
{
    EXPECT_EQ(Query(std::nullopt).result, 0u);
    EXPECT_EQ(m_http->Count("AddRequestHeaders Content-Length: 0"), 1);
    EXPECT_TRUE(m_log->Has("T HttpConnection::Query: Executing query, post data WINHTTP_NO_REQUEST_DATA"));
}

TEST_F(HttpConnectionTest, QueryWithACompressor)
{
    m_settings.compressor = std::make_shared<Shortener>();
    EXPECT_EQ(Query().result, 0u);
    EXPECT_EQ(m_http->Count("AddRequestHeaders Content-Encoding: gzip"), 1);
    EXPECT_EQ(m_http->Count("AddRequestHeaders Content-Length: 3"), 1);
    EXPECT_EQ(m_http->Count("SendRequest <b>"), 1);
}

TEST_F(HttpConnectionTest, BodiesOverTheLimitAreNotSent)
{
    const std::string over(101, 'x');
    EXPECT_EQ(Query(over).result, DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(m_http->Count("OpenRequest POST /1 8388608"), 0);
    EXPECT_TRUE(m_log->Has("E HttpConnection::Query: VRI payload of size 101 bytes is oversized. Maximum size of VRI "
                           "payload is 100 bytes."));

    m_settings.http.maxSize = 0;
    m_settings.proxyDiscovery = std::make_shared<NoProxyDiscovery>();
    EXPECT_EQ(Query(over).result, 0u);
}

TEST_F(HttpConnectionTest, FallsBackToADirectConnectionOnce)
{
    const struct {
        std::deque<DWORD> sends;
        bool mayFallBack;
        DWORD result;
        std::ptrdiff_t sendCount;
    } kCases[] = {
        {{12002}, true, 0, 2},      {{12029}, true, 0, 2},     {{12029, 12029, 0}, true, 12029, 2},
        {{12029}, false, 12029, 1}, {{12007}, true, 12007, 1},
    };
    for (const auto& row : kCases) {
        SCOPED_TRACE(row.sends.front());
        m_log->lines.clear();
        m_settings.http.server = L"service.example";
        m_settings.proxy.m_wpadFlags = WINHTTP_AUTOPROXY_AUTO_DETECT;
        m_settings.proxy.m_proxyTimeoutFallbackToDirect = row.mayFallBack;
        m_settings.proxyDiscovery = std::make_shared<NoProxyDiscovery>();
        m_http->errors["SendRequest"] = row.sends;
        EXPECT_EQ(Query().result, row.result);
        EXPECT_EQ(m_http->Count("SendRequest body"), row.sendCount);
        EXPECT_EQ(m_log->Has("W HttpConnection::Query: Using proxy fallback"), row.sendCount == 2);
        EXPECT_EQ(m_log->Has("W HttpConnection::Query: Failed to send http request"), row.result != 0);
        EXPECT_EQ(m_http->Count("Open 1"), row.sendCount - 1); // reopened for the direct attempt
        EXPECT_EQ(m_http->openHandles, 0);
    }
}

TEST_F(HttpConnectionTest, AServerThatNoPinnedIssuerSignedIsRefused)
{
    const auto outsider = LoadCertificates("server-outsider");
    m_settings.pinCertificates = true;
    m_settings.pinnedCertificates = LoadCertificates("issuers");
    m_settings.proxy.m_repAuthSchemes = {REP_PROXY_AUTH_SCHEME_NTLM, REP_PROXY_AUTH_SCHEME_BASIC};
    m_http->serverCertificate = outsider.front().Get();
    m_http->statuses = {407}; // also not when it plays the proxy: no credentials for it
    EXPECT_EQ(Query().result, DWORD{ERROR_WINHTTP_SECURE_FAILURE});
    EXPECT_EQ(m_http->Count("SendRequest body"), 1);
    EXPECT_TRUE(m_log->Has("E HttpConnection::SendRequest: HttpConnection::SendRequest invalid server certificate."));
    EXPECT_TRUE(m_log->Has("E HttpConnection::SendRequest: The server's certificate chain is trusted, but none of the "
                           "pinned issuers signed the certificate: an inspecting proxy between this host and the "
                           "service is the likely cause."));
}

TEST_F(HttpConnectionTest, AProxyThatAsksForAuthenticationLeavesNoCertificateToJudge)
{
    m_settings.pinCertificates = true;
    m_settings.pinnedCertificates = LoadCertificates("issuers");
    m_http->statuses = {407};
    const HttpResponse response = Query();
    EXPECT_EQ(response.result, 0u);
    EXPECT_EQ(response.status, 407u);
    EXPECT_FALSE(m_log->Has("E HttpConnection::SendRequest: HttpConnection::SendRequest invalid server certificate."));
    EXPECT_TRUE(m_log->Has("T C_HTTPProxyAuthListManager::FindNextAuthenticationScheme: Only one authentication scheme "
                           "configured which we have already tried."));
}

TEST_F(HttpConnectionTest, FailuresBeforeTheSendEndTheAttempt)
{
    m_settings.proxy.m_wpadDetectFlags = 4; // asks to detect, by no means
    EXPECT_EQ(Query().result, DWORD{ERROR_WINHTTP_LOGIN_FAILURE});
    EXPECT_EQ(m_http->Count("SendRequest body"), 0);
    EXPECT_TRUE(m_log->Has("E HttpConnection::SendRequest: HttpConnection::SendRequest ProxyManager::InitRequest "
                           "failed err = ERROR_WINHTTP_LOGIN_FAILURE"));

    m_settings.proxyDiscovery = std::make_shared<NoProxyDiscovery>();
    m_settings.proxy.m_wpadDetectFlags = 1;
    m_http->errors["OpenRequest"] = {12019, 12019};
    EXPECT_EQ(Query().result, 12019u);
    EXPECT_TRUE(m_log->Has("E HttpConnection::SendRequest: Failed to open HTTP request."));
}

TEST_F(HttpConnectionTest, AnAnswerThatDoesNotComeIsAFailedQuery)
{
    m_http->errors["ReceiveResponse"] = {12152};
    EXPECT_EQ(Query().result, 12152u);
    EXPECT_TRUE(m_log->Has("W HttpConnection::Query: Failed to get response"));
    EXPECT_EQ(m_http->Count("ReceiveResponse"), 1);
}

TEST_F(HttpConnectionTest, WithoutAConnectionNothingIsSent)
{
    HttpConnection connection = Connect();
    EXPECT_TRUE(connection.Close());
    HttpResponse response;
    connection.Query({L"/1", L"POST"}, {}, "body", response);
    EXPECT_EQ(response.result, DWORD{ERROR_WINHTTP_INCORRECT_HANDLE_STATE});
    std::unique_ptr<HttpRequest> request;
    EXPECT_EQ(connection.SendRequest(request, {L"/1", L"POST"}, {}, "body"),
              DWORD{ERROR_WINHTTP_INCORRECT_HANDLE_STATE});
    EXPECT_TRUE(m_log->Has("E HttpConnection::SendRequest: no connection: ERROR_WINHTTP_INCORRECT_HANDLE_STATE 12019"));
}

} // namespace
} // namespace vantor
