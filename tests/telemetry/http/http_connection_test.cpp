#include "support/connection_test.h"

namespace vantor {
namespace {

class Shortener : public ICompressor {
public:
    std::string Compress(std::string_view body) override { return "<" + std::string(body.substr(0, 1)) + ">"; }
};

TEST_F(HttpConnectionTest, OpensForTls12Only)
{
    m_http->errors["CloseHandle"] = {6, 6};
    Connect();
    for (const char* const line :
         {"~HttpConnection: Unable to close connection", "Close: m_HttpInterface->CloseHandle(m_hConnection) failed",
          "Close: m_HttpInterface->CloseHandle(m_hSession) failed"}) {
        EXPECT_TRUE(Logged(std::string("E HttpConnection::") + line)) << line;
    }
    EXPECT_EQ(m_http->calls, "Open 1;SetTimeouts 1 2 3 4;SetOption 84 2048;SetOption 133 0;Connect service.example 443;"
                             "CloseHandle 2;CloseHandle 1;");
}

TEST_F(HttpConnectionTest, AFailedStepOfOpeningLeavesNothingOpen)
{
    const std::tuple<const char*, DWORD, const char*> kCases[] = {
        {"Open", 12001, "WinHttpOpen error ERROR_WINHTTP_OUT_OF_HANDLES 12001"},
        {"SetTimeouts", 12018, "WinHttpSetTimeouts error ERROR_WINHTTP_INCORRECT_HANDLE_TYPE 12018"},
        {"SetOption 84", 12009, "WinHttpSetOption error ERROR_WINHTTP_INVALID_OPTION 12009"},
        {"SetOption 133", 12018, "WinHttpSetOption error ERROR_WINHTTP_INCORRECT_HANDLE_TYPE 12018"},
        {"Connect", 12005, "WinHttpConnect error ERROR_WINHTTP_INVALID_URL 12005"},
    };
    for (const auto& [operation, error, line] : kCases) {
        SCOPED_TRACE(line);
        m_http->errors[operation] = {error};
        EXPECT_THAT([this] { Connect(); }, ::testing::ThrowsMessage<std::runtime_error>("Reset failed."));
        EXPECT_TRUE(Logged("E HttpConnection::Reset: HttpConnection::Reset " + std::string(line)));
        EXPECT_EQ(m_http->openHandles, 0);
    }
    EXPECT_TRUE(Logged("E HttpConnection::HttpConnection: Reset failed in HttpConnection::HttpConnection"));
    m_http->errors["SetOption 133"] = {12009}; // an older Windows does not know the option
    EXPECT_NO_THROW(Connect());
    m_http = nullptr;
    EXPECT_THAT([this] { Connect(); }, ::testing::ThrowsMessage<std::runtime_error>("Http implementation is null."));
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
        EXPECT_THAT(m_http->calls, ::testing::StartsWith("OpenRequest POST /1 8388608;SetOption 77 2;SetOption 88 0;"));
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
    EXPECT_TRUE(Logged("T CHTTPSessionAutoProxy::TrySystemProxyInfo: System proxy discovery not configured"));
    EXPECT_EQ(Query([](auto& settings) { settings.proxy = {}; }).result, 0u);
    EXPECT_TRUE(Logged("T C_HTTPProxyAuthListManager::InitRequest: No rep authentication configured."));
    EXPECT_TRUE(Logged("E HttpConnection::SendRequest: HTTPRequest::Send() failed: "
                       "ERROR_WINHTTP_NAME_NOT_RESOLVED 12007"));
    EXPECT_TRUE(Logged("E HttpConnection::SendRequest: HTTPRequest::Send() failed, not retrying"));
}

TEST_F(HttpConnectionTest, AProxysChallengeIsAnsweredWithEachSchemeOnce)
{
    const struct {
        std::vector<std::uint32_t> configured;
        ScriptedProxy proxy; ///< schemes that it offers and accepts, and legs of a logon
        const char* outcome; ///< WinHTTP schemes, "send" for each send, then the status, or 0 and the error
        const char* failing = "";
        std::deque<DWORD> errors = {};
    } kCases[] = {
        {{3}, {2}, "2 send 407"}, // the only one is not repeated
        {{4, 3, 1}, {1, 1}, "send 1 send 200"},
        {{4, 3, 1}, {19}, "send 16 send 2 send 1 send 407"},
        {{1, 1, 3}, {3, 2}, "send 1 send 2 send 200"},
        {{4, 3}, {2}, "send 407", "QueryAuthSchemes", {12019}},
        {{3, 1}, {1, 1}, "send 1 send 200", "SendRequest", {12030}},           // asked in a failed send
        {{3, 1}, {3, 1}, "send 2 send 1 send 200", "SendRequest", {0, 12015}}, // refused, answer lost
        {{3, 1}, {3, 2}, "send 2 send send 200", "SendRequest", {0, 12002}},   // then directly
        {{3}, {2, 2, 1}, "2 send 2 send 200"}, // each step of a logon needs the credentials again
        {{4, 3}, {16, 16, 3}, "send 16 send 16 send 16 send 16 send 200"},
        {{3}, {2, 2, 9}, "2 send 2 send 2 send 2 send 0 12032"}, // a proxy that has never enough
        {{3}, {2, 2}, "2 send 2 send 200", "ReceiveResponse", {12032}},
        {{3}, {2, 2, 2}, "2 send 2 send 2 send 2 send 0 12032", "ReceiveResponse", std::deque<DWORD>(9, 12032)},
        {{3, 1}, {3, 1}, "send 2 1 send 200", "SetCredentials", {87}},
        {{3, 1}, {2, 2, 1}, "send 2 send 2 0 87", "SetCredentials", {0, 87}},
        {{2, 1}, {3, 1}, "send 1 send 200", "SetOption 0", {12009}}, // no logon as the user
        {{2}, {}, "as shell send 200"},
        {{7}, {}, "0 12015"}, // there is no such scheme
        {{7, 1}, {1, 1}, "send 1 send 200"},
        {{3}, {0, 0, 0, 403}, "2 send 403"},
    };
    for (const auto& row : kCases) {
        m_http->proxy = row.proxy;
        m_http->errors = {{row.failing, row.errors}};
        const HttpResponse response = Query([&](auto& settings) {
            settings.proxy.m_address = L"proxy:1";
            settings.proxy.m_repAuthSchemes = row.configured;
        });
        std::string outcome;
        std::istringstream calls(m_http->calls);
        for (std::string one; std::getline(calls, one, ';');) {
            outcome += one == "SendRequest body" ? "send " : one == "As shell" ? "as shell " : "";
            outcome += one.starts_with("SetCredentials 1 ") ? one.substr(17, one.find(' ', 17) - 16) : "";
        }
        outcome += std::to_string(response.status) + (response.result ? " " + std::to_string(response.result) : "");
        EXPECT_EQ(outcome, row.outcome);
        EXPECT_EQ(m_http->openHandles, 0);
    }
    EXPECT_TRUE(m_tokens->calls.ends_with("Impersonate shell;Revert;")) << m_tokens->calls;
    EXPECT_TRUE(Logged("T HttpConnection::SendRequest: Clean request failed =0"));
    EXPECT_TRUE(Logged("T C_HTTPProxyAuthListManager::LookUpAuthenticationSchemeByRepAuthenticationScheme: "
                       "Rep auth scheme is 7"));
    EXPECT_TRUE(Logged("T CHTTPProxyAuthScheme::SetCredentials: AuthScheme=2 succeded=false err=87"));
    EXPECT_TRUE(Logged("T HttpConnection::SendRequest: ERROR_WINHTTP_RESEND_REQUEST, retry"));
    EXPECT_TRUE(Logged("E HttpRequest::Send: HttpRequest::Send WinHttpSetCredentials error Unknown error (87) 87"));
    EXPECT_THAT(m_log->lines, ::testing::Contains(::testing::EndsWith(": QueryAuthSchemes() failed, err=12019")));
}

TEST_F(HttpConnectionTest, AChallengeExcusesAMissingCertificateButNoOther)
{
    const auto outsider = LoadCertificates("server-outsider");
    const auto change = [](auto& settings) {
        Pin(settings);
        settings.proxy.m_repAuthSchemes = {REP_PROXY_AUTH_SCHEME_NTLM, REP_PROXY_AUTH_SCHEME_BASIC};
    };
    m_http->status = 407;
    EXPECT_EQ(Query(change).status, 407u);
    EXPECT_EQ(Calls("QueryAuthSchemes"), 1);

    m_http->serverCertificate = outsider.front().Get();
    for (const DWORD error :
         {0u, 12015u, 12029u, 12032u}) { // one that plays the proxy: neither credentials nor a second body
        m_log->lines.clear();
        m_http->errors["SendRequest"] = {error};
        EXPECT_EQ(Query(change).result, DWORD{ERROR_WINHTTP_SECURE_FAILURE});
        EXPECT_EQ(Calls("SendRequest body"), 1);
        EXPECT_EQ(Calls("ReceiveResponse") + Calls("QueryAuthSchemes"), 0);
        EXPECT_TRUE(Logged("E HttpConnection::SendRequest: HttpConnection::SendRequest invalid server certificate."));
    }
    EXPECT_EQ(Query([](auto& s) { s.pinCertificates = true; }).result, DWORD{ERROR_WINHTTP_SECURE_FAILURE});
    EXPECT_TRUE(Logged("E HttpConnection::SendRequest: There are no pinned certificates: no server is accepted."));

    m_http->status = 200; // a tunnel that came about only while the answer was received
    for (const auto& [name, result] : {std::pair("server-a", 0), {"server-outsider", ERROR_WINHTTP_SECURE_FAILURE}}) {
        const auto late = LoadCertificates(name);
        m_http->serverCertificate = late.front().Get();
        m_http->errors["QueryOption 78"] = {12019};
        EXPECT_EQ(Query(change).result, DWORD(result));
    }
}

TEST_F(HttpConnectionTest, WithoutACertificateTheLogSaysWhatHappened)
{
    const std::string tunnel = "E HttpConnection::SendRequest: The proxy did not build the tunnel to the service: it "
                               "answered with status ";
    const std::string receiving =
        "E HttpRequest::AcceptResponse: HttpRequest::AcceptResponse WinHttpReceiveResponse result ";
    const struct {
        DWORD refusal;        ///< status of the proxy
        DWORD error;          ///< of receiving
        DWORD result, status; ///< of the query
        std::string line;
    } kCases[] = {
        {0, 12002, 12002, 0, receiving + "ERROR_WINHTTP_TIMEOUT 12002"},
        {0, 12030, 12030, 0, receiving + "ERROR_WINHTTP_CONNECTION_ERROR 12030"},
        {0, 12152, 12152, 0, receiving + "ERROR_WINHTTP_INVALID_SERVER_RESPONSE 12152"},
        {403, 0, 0, 403, tunnel + "403."},
        {502, 0, 0, 502, tunnel + "502."},
        {503, 12030, 12030, 0, receiving + "ERROR_WINHTTP_CONNECTION_ERROR 12030"},
        {0, 0, 12175, 0, "E HttpConnection::SendRequest: HttpConnection::SendRequest invalid server certificate."},
    };
    for (const auto& row : kCases) {
        m_log->lines.clear();
        m_http->proxy = {.refusal = row.refusal};
        m_http->errors["ReceiveResponse"] = {row.error};
        const HttpResponse response = Query([](auto& settings) {
            Pin(settings);
            ForbidFallback(settings);
            settings.proxy.m_address = L"proxy:1";
        });
        EXPECT_EQ(response.result, row.result);
        EXPECT_EQ(response.status, row.status);
        EXPECT_TRUE(Logged(row.line)) << ::testing::PrintToString(m_log->lines);
        EXPECT_EQ(Logged(std::end(kCases)[-1].line), row.result == 12175);
        EXPECT_EQ(Calls("SendRequest body"), 1);
    }
}

TEST_F(HttpConnectionTest, TheDetectedProxyServesTheVeryRequest)
{
    m_discovery->errors.clear();
    for (const bool isRefused : {false, true}) {
        m_http->ways.clear();
        m_http->errors["SetOption 38"] = {isRefused ? DWORD{12009} : DWORD{0}};
        EXPECT_EQ(Query().result, isRefused ? DWORD{12009} : DWORD{0});
        EXPECT_EQ(m_http->ways, isRefused ? "" : "p;");
    }
}

TEST_F(HttpConnectionTest, WithoutWhatItNeedsNothingIsSent)
{
    const auto undetected = Query([](auto& s) { s.proxy.m_wpadDetectFlags = 4; }); // asks to detect, by no means
    EXPECT_EQ(undetected.result, DWORD{ERROR_WINHTTP_LOGIN_FAILURE});
    EXPECT_EQ(Calls("SendRequest body"), 0);
    EXPECT_TRUE(Logged("E HttpConnection::SendRequest: HttpConnection::SendRequest ProxyManager::InitRequest failed "
                       "err = ERROR_WINHTTP_LOGIN_FAILURE"));

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
