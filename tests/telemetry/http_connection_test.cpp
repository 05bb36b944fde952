#include "telemetry/http_connection.h"
#include "scripted_http.h"
#include "test_certificates.h"

#include <functional>

namespace vantor {
namespace {

using Change = std::function<void(HttpConnectionSettings&)>;

class Shortener : public ICompressor {
public:
    std::string Compress(std::string_view body) override { return "<" + std::string(body.substr(0, 1)) + ">"; }
};

class HttpConnectionTest : public HttpTest {
protected:
    HttpConnectionTest() { m_discovery->error = ERROR_WINHTTP_AUTODETECTION_FAILED; }

    static void Pin(HttpConnectionSettings& settings)
    {
        settings.pinCertificates = true;
        settings.pinnedCertificates = LoadCertificates("issuers");
    }

    HttpConnection Connect(const Change& change = {})
    {
        HttpConnectionSettings settings;
        settings.http = {L"service.example", 443, L"Agent", 100};
        settings.timeouts = {1, 2, 3, 4};
        settings.proxy.m_wpadFlags = WINHTTP_AUTOPROXY_AUTO_DETECT;
        settings.proxy.m_wpadDetectFlags = WINHTTP_AUTO_DETECT_TYPE_DNS_A;
        settings.proxy.m_proxyTimeoutFallbackToDirect = true;
        settings.pinCertificates = false;
        settings.proxyDiscovery = m_discovery;
        if (change) {
            change(settings);
        }
        return HttpConnection(std::move(settings), m_http, m_log);
    }

    std::string ConnectFailure()
    {
        try {
            Connect();
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return {};
    }

    /// Queries over a new connection; the calls are those of the query and the closing.
    HttpResponse Query(const Change& change = {}, std::optional<std::string_view> body = "body")
    {
        HttpResponse response;
        HttpConnection connection = Connect(change);
        m_http->calls.clear();
        connection.Query({L"/1", L"POST"}, {}, body, response);
        return response;
    }
};

TEST_F(HttpConnectionTest, OpensForTls12Only)
{
    Connect();
    EXPECT_EQ(m_http->calls, "Open 1;SetTimeouts 1 2 3 4;SetOption 84 2048;SetOption 133 0;Connect service.example 443;"
                             "CloseHandle 2;CloseHandle 1;");
}

TEST_F(HttpConnectionTest, AFailedStepOfOpeningLeavesNothingOpen)
{
    const struct {
        const char* operation;
        DWORD error;
        const char* line;
        bool fails = true;
    } kCases[] = {
        {"Open", 12001, "WinHttpOpen error ERROR_WINHTTP_OUT_OF_HANDLES 12001"},
        {"SetTimeouts", 12018, "WinHttpSetTimeouts error ERROR_WINHTTP_INCORRECT_HANDLE_TYPE 12018"},
        {"SetOption 84", 12009, "WinHttpSetOption error ERROR_WINHTTP_INVALID_OPTION 12009"},
        {"SetOption 133", 12018, "WinHttpSetOption error ERROR_WINHTTP_INCORRECT_HANDLE_TYPE 12018"},
        // An older Windows does not know the option.
        {"SetOption 133", 12009, "WinHttpSetOption error ERROR_WINHTTP_INVALID_OPTION 12009", false},
        {"Connect", 12005, "WinHttpConnect error ERROR_WINHTTP_INVALID_URL 12005"},
    };
    for (const auto& [operation, error, line, fails] : kCases) {
        SCOPED_TRACE(line);
        m_log->lines.clear();
        m_http->errors[operation] = {error};
        EXPECT_EQ(ConnectFailure(), fails ? "Reset failed." : "");
        EXPECT_EQ(Logged("E HttpConnection::HttpConnection: Reset failed in HttpConnection::HttpConnection"), fails);
        EXPECT_TRUE(Logged("E HttpConnection::Reset: HttpConnection::Reset " + std::string(line)));
        EXPECT_EQ(m_http->openHandles, 0);
    }
    m_http = nullptr;
    EXPECT_EQ(ConnectFailure(), "Http implementation is null.");
    EXPECT_TRUE(
        Logged("E HttpConnection::HttpConnection: Http implementation is null in HttpConnection::HttpConnection"));
}

TEST_F(HttpConnectionTest, QuerySendsTheBodyWithItsLength)
{
    const struct {
        std::optional<std::string_view> body;
        bool compressed;
        const char* sent; ///< from the headers to the reply
        const char* logged;
    } kCases[] = {
        {"body", false, ";AddRequestHeaders Content-Length: 4;SendRequest body;ReceiveResponse;", "body"},
        {{}, false, ";AddRequestHeaders Content-Length: 0;SendRequest ;ReceiveResponse;", "WINHTTP_NO_REQUEST_DATA"},
        {"body", true,
         ";AddRequestHeaders Content-Encoding: gzip;AddRequestHeaders Content-Length: 3;SendRequest <b>;"
         "ReceiveResponse;",
         "<b>"},
    };
    for (const auto& row : kCases) {
        m_http->bodyPieces = {"o", "k"};
        const HttpResponse response = Query(
            [&](auto& settings) { settings.compressor = row.compressed ? std::make_shared<Shortener>() : nullptr; },
            row.body);
        EXPECT_EQ(response.result, 0u);
        EXPECT_EQ(response.status, 200u);
        EXPECT_EQ(response.body, (std::vector<std::uint8_t>{'o', 'k'}));
        EXPECT_THAT(m_http->calls, ::testing::HasSubstr(row.sent));
        EXPECT_EQ(Calls("ReceiveResponse"), 1);
        EXPECT_TRUE(Logged("T HttpConnection::Query: Executing query, post data " + std::string(row.logged)));
        EXPECT_EQ(m_http->openHandles, 0);
    }
}

TEST_F(HttpConnectionTest, BodiesOverTheLimitAreNotSent)
{
    const std::string over(101, 'x');
    EXPECT_EQ(Query({}, over).result, DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(m_http->calls, "CloseHandle 2;CloseHandle 1;");
    EXPECT_TRUE(Logged("E HttpConnection::Query: VRI payload of size 101 bytes is oversized. Maximum size of VRI "
                       "payload is 100 bytes."));
    EXPECT_EQ(Query([](auto& settings) { settings.http.maxSize = 0; }, over).result, 0u);
}

TEST_F(HttpConnectionTest, FallsBackToADirectConnectionOnce)
{
    const struct {
        std::deque<DWORD> sends;
        bool mayFallBack;
        DWORD result;
        int sendCount;
    } kCases[] = {
        {{12002}, true, 0, 2},      {{12029}, true, 0, 2},     {{12029, 12029, 0}, true, 12029, 2},
        {{12029}, false, 12029, 1}, {{12007}, true, 12007, 1},
    };
    for (const auto& row : kCases) {
        SCOPED_TRACE(row.sends.front());
        m_log->lines.clear();
        m_http->errors["SendRequest"] = row.sends;
        const auto response = Query([&](auto& s) { s.proxy.m_proxyTimeoutFallbackToDirect = row.mayFallBack; });
        EXPECT_EQ(response.result, row.result);
        EXPECT_EQ(Calls("SendRequest body"), row.sendCount);
        EXPECT_EQ(Logged("W HttpConnection::Query: Using proxy fallback"), row.sendCount == 2);
        EXPECT_EQ(Logged("W HttpConnection::Query: Failed to send http request"), row.result != 0);
        EXPECT_EQ(Calls("Open 1"), row.sendCount - 1); // reopened for the direct attempt
        EXPECT_EQ(m_http->openHandles, 0);
    }
}

TEST_F(HttpConnectionTest, AServerThatNoPinnedIssuerSignedIsRefused)
{
    const auto outsider = LoadCertificates("server-outsider");
    m_http->serverCertificate = outsider.front().Get();
    m_http->status = 407; // also not when it plays the proxy: no credentials for it
    const HttpResponse response = Query([](auto& settings) {
        Pin(settings);
        settings.proxy.m_repAuthSchemes = {REP_PROXY_AUTH_SCHEME_NTLM, REP_PROXY_AUTH_SCHEME_BASIC};
    });
    EXPECT_EQ(response.result, DWORD{ERROR_WINHTTP_SECURE_FAILURE});
    EXPECT_EQ(Calls("SendRequest body"), 1);
    EXPECT_EQ(Calls("QueryAuthSchemes"), 0);
    EXPECT_TRUE(Logged("E HttpConnection::SendRequest: HttpConnection::SendRequest invalid server certificate."));
}

TEST_F(HttpConnectionTest, AProxyThatAsksForAuthenticationLeavesNoCertificateToJudge)
{
    m_http->status = 407;
    const HttpResponse response = Query(Pin);
    EXPECT_EQ(response.result, 0u);
    EXPECT_EQ(response.status, 407u);
    EXPECT_FALSE(Logged("E HttpConnection::SendRequest: HttpConnection::SendRequest invalid server certificate."));
    EXPECT_TRUE(Logged("T C_HTTPProxyAuthListManager::FindNextAuthenticationScheme: Only one authentication scheme "
                       "configured which we have already tried."));
}

TEST_F(HttpConnectionTest, FailuresAroundTheSendEndTheAttempt)
{
    const auto undetected = Query([](auto& s) { s.proxy.m_wpadDetectFlags = 4; }); // asks to detect, by no means
    EXPECT_EQ(undetected.result, DWORD{ERROR_WINHTTP_LOGIN_FAILURE});
    EXPECT_EQ(Calls("SendRequest body"), 0);
    EXPECT_TRUE(Logged("E HttpConnection::SendRequest: HttpConnection::SendRequest ProxyManager::InitRequest failed "
                       "err = ERROR_WINHTTP_LOGIN_FAILURE"));

    m_http->errors["OpenRequest"] = {12019, 12001};
    EXPECT_EQ(Query().result, 12001u);
    EXPECT_TRUE(Logged("E HttpConnection::SendRequest: Failed to open HTTP request."));

    m_http->errors["ReceiveResponse"] = {12152};
    EXPECT_EQ(Query().result, 12152u);
    EXPECT_TRUE(Logged("W HttpConnection::Query: Failed to get response"));
    EXPECT_EQ(Calls("ReceiveResponse"), 1);
}

TEST_F(HttpConnectionTest, WithoutAConnectionNothingIsSent)
{
    HttpConnection connection = Connect();
    EXPECT_TRUE(connection.Close());
    HttpResponse response;
    connection.Query({L"/1", L"POST"}, {}, "body", response);
    EXPECT_EQ(response.result, DWORD{ERROR_WINHTTP_INCORRECT_HANDLE_STATE});
    std::unique_ptr<HttpRequest> request;
    EXPECT_EQ(connection.SendRequest(request, {}, {}, "body"), DWORD{ERROR_WINHTTP_INCORRECT_HANDLE_STATE});
    EXPECT_TRUE(Logged("E HttpConnection::SendRequest: no connection: ERROR_WINHTTP_INCORRECT_HANDLE_STATE 12019"));
}

} // namespace
} // namespace vantor
