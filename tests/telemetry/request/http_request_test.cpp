#include "support/connection_test.h"
#include "telemetry/winhttp/code_names.h"

namespace vantor {
namespace {

using HttpRequestTest = HttpConnectionTest;

TEST_F(HttpRequestTest, ResendsWhereWinHttpAsksForIt)
{
    const struct {
        std::deque<DWORD> sends; ///< their errors
        DWORD flags;             ///< error of the query of option 31, the security flags
        DWORD result;
        int sendCount;
        const char* line;
    } kCases[] = {
        {{12032}, 0, 0, 2, "T HttpRequest::Send: retry successful."},
        {{12032, 12032}, 0, 0, 3, "T HttpRequest::Send: ERROR_WINHTTP_RESEND_REQUEST, retry"},
        {std::deque<DWORD>(9, 12032), 0, 12032, 4,
         "W HttpRequest::Send: error ERROR_WINHTTP_RESEND_REQUEST 12032, retry failed."},
        {{12175}, 0, 0, 2, "T HttpRequest::Send: retry successful."},
        {{12175, 12002}, 0, 12002, 2, "W HttpRequest::Send: error ERROR_WINHTTP_TIMEOUT 12002, retry failed."},
        {{12175},
         12018,
         12175,
         1,
         "E HttpRequest::Send: HttpRequest::Send WinHttpSendRequest result ERROR_WINHTTP_SECURE_FAILURE 12175"},
        {{kUntold}, 0, 12004, 1, "T HttpRequest::Send: error ERROR_WINHTTP_INTERNAL_ERROR 12004 retry flag not set."},
        {{12029}, 0, 12029, 1, "T HttpRequest::Send: error ERROR_WINHTTP_CANNOT_CONNECT 12029 retry flag not set."},
    };
    for (const auto& row : kCases) {
        SCOPED_TRACE(row.line);
        m_log->lines.clear();
        m_http->errors["SendRequest"] = row.sends;
        m_http->errors["QueryOption 31"] = {row.flags};
        EXPECT_EQ(Query(ForbidFallback).result, row.result);
        EXPECT_EQ(Calls("SendRequest body"), row.sendCount);
        EXPECT_TRUE(Logged(row.line)) << ::testing::PrintToString(m_log->lines);
    }
}

TEST_F(HttpRequestTest, AcceptsExactlyWhatAPinnedIssuerSigned)
{
    const struct {
        const char* server;
        CertificateVerdict verdict;
        const char* issuer; ///< logged as matching
    } kCases[] = {
        {"server-a", CertificateVerdict::accepted, "VANTor local issuer A"},
        {"server-b", CertificateVerdict::accepted, "VANTor local issuer B"},
        {"server-outsider", CertificateVerdict::rejected, nullptr},
        {nullptr, CertificateVerdict::unknown, nullptr},
    };
    HttpConnection connection = Connect(Pin);
    for (const auto& [server, verdict, issuer] : kCases) {
        SCOPED_TRACE(server ? server : "no certificate");
        const auto certificates = server ? LoadCertificates(server) : std::vector<Certificate>();
        m_http->serverCertificate = server ? certificates.front().Get() : nullptr;
        HttpRequest request(connection, m_http, m_log, L"/1", L"POST", WINHTTP_FLAG_SECURE);
        m_log->lines.clear();
        bool valid = false;
        bool retry = true;
        EXPECT_EQ(request.Send({}, "body", 4, valid, retry), 0u);
        EXPECT_FALSE(retry);
        EXPECT_EQ(request.Verdict(), verdict);
        EXPECT_EQ(valid, verdict == CertificateVerdict::accepted);
        EXPECT_EQ(Logged("T HttpRequest::ValidateServerCert: Verified: 1"), valid);
        EXPECT_EQ(Logged("E HttpRequest::ValidateServerCert: Certificate in request not as expected."),
                  verdict == CertificateVerdict::rejected);
        if (issuer) { // shown among what is available, and as matching
            const std::string subject = "T HttpRequest::ValidateServerCert: Certificate Subject: ";
            EXPECT_EQ(std::count(m_log->lines.begin(), m_log->lines.end(), subject + issuer), 2);
        }
    }
    m_http->errors["SendRequest"] = {12029, 12029};
    EXPECT_EQ(Query(Pin).result, 12029u); // the missing certificate does not hide why
    EXPECT_TRUE(Logged("W HttpRequest::Send: Unable to parse certificate data from connection: "
                       "ERROR_WINHTTP_CANNOT_CONNECT"));
}

TEST_F(HttpRequestTest, AReplyWithoutEndIsCut)
{
    const std::string megabyte(1 << 20, 'x');
    m_http->bodyPieces = {megabyte, "x", "never read"};
    const HttpResponse response = Query();
    EXPECT_EQ(response.result, 0u);
    EXPECT_EQ(response.body.size(), megabyte.size());
    EXPECT_TRUE(Logged("W HttpRequest::ReadPayload: The reply is cut after 1048576 bytes: at most 1048576 bytes "
                       "are read, for at most 60000 milliseconds."));
}

TEST_F(HttpRequestTest, AFailedStepEndsTheQueryButOpeningIsTriedAgainOnceAfterAReset)
{
    const std::tuple<const char*, DWORD, const char*> kCases[] = {
        {"OpenRequest", 12019, "OpenRequestWithRetries: HttpConnection::CreateRequest WinHttpOpenRequest error "},
        {"SetOption 88", 12009, "Open: HttpRequest::Open WinHttpSetOption error "},
        {"AddRequestHeaders", 12155, "AddHeaders: HttpRequest::AddHeaders WinHttpAddRequestHeaders error "},
        {"ReceiveResponse", 12152, "AcceptResponse: HttpRequest::AcceptResponse WinHttpReceiveResponse result "},
        {"QueryHeaders status", 12002,
         "ReadHeaders: HttpRequest::ReadHeaders WinHttpQueryHeaders failed to read status code - error "},
        {"QueryHeaders block", 12002, "ReadHeaders: HttpRequest::ReadHeaders WinHttpQueryHeaders error "},
        {"QueryDataAvailable", 12002, "ReadPayload: HttpRequest::ReadPayload WinHttpQueryDataAvailable error "},
        {"ReadData", 12002, "ReadPayload: WinHttpReadData error "},
    };
    for (const auto& [failing, error, line] : kCases) {
        m_http->errors = {{failing, {error, error}}};
        m_http->bodyPieces = {"piece"};
        EXPECT_EQ(Query().result, error);
        const std::string start = std::string("E HttpRequest::") + line + NamedWinHttpError(error);
        EXPECT_THAT(m_log->lines, ::testing::Contains(::testing::StartsWith(start)));
        EXPECT_EQ(m_http->openHandles, 0);
    }
    EXPECT_TRUE(Logged("W HttpConnection::Query: Failed to get response"));
    m_http->errors = {{"OpenRequest", {12019}}, {"Connect", {0, 12007}}}; // no reset
    EXPECT_EQ(Query().result, 12019u);
    EXPECT_TRUE(Logged("E HttpConnection::SendRequest: Failed to open HTTP request."));
    m_http->errors = {{"OpenRequest", {12001}}, {"SetOption 77", {12009}}, {"CloseHandle", {0, 0, 6}}};
    EXPECT_EQ(Query().result, 0u);
    EXPECT_TRUE(Logged("E HttpRequest::Close: m_HttpInterface->CloseHandle failed")); // behind the reset's two
    EXPECT_THAT(m_log->lines, ::testing::Contains(::testing::EndsWith("12009: the automatic logon stays as it is.")));
    EXPECT_THAT(m_log->lines, ::testing::Contains(::testing::EndsWith("12019, retry 0")));
    EXPECT_THAT(m_log->lines, ::testing::Contains(::testing::EndsWith("12001, retry 1")));
}

} // namespace
} // namespace vantor
