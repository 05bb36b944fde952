#include "telemetry/http_request.h"
#include "scripted_http.h"
#include "test_certificates.h"

namespace vantor {
namespace {

class FakeHost : public IRequestHost {
public:
    HINTERNET ConnectionHandle() const override { return nullptr; }
    bool IsPinningCertificates() const override { return isPinning; }
    std::span<const Certificate> PinnedCertificates() const override { return pinned; }
    DWORD Reset() override { return ++resets, resetError; }

    bool isPinning = false;
    std::vector<Certificate> pinned;
    int resets = 0;
    DWORD resetError = ERROR_SUCCESS;
};

class HttpRequestTest : public HttpTest {
protected:
    std::unique_ptr<HttpRequest> Open()
    {
        return std::make_unique<HttpRequest>(m_host, m_http, m_log, L"/1", L"POST", WINHTTP_FLAG_SECURE);
    }

    DWORD Send(HttpRequest& request)
    {
        bool retry = true;
        const DWORD result = request.Send({}, "body", 4, m_certificateValid, retry);
        EXPECT_FALSE(retry);
        return result;
    }

    std::string OpenFailure()
    {
        try {
            Open();
        } catch (const HttpRequestError& error) {
            return error.what() + (" " + std::to_string(error.Code()));
        }
        return {};
    }

    FakeHost m_host;
    bool m_certificateValid = false;
};

TEST_F(HttpRequestTest, OpensWithHighAutologonSecurityAndClosesItsHandle)
{
    Open();
    EXPECT_EQ(m_http->calls, "OpenRequest POST /1 8388608;SetOption 77 2;CloseHandle 1;");
}

TEST_F(HttpRequestTest, OpensAgainOnceAfterAReset)
{
    m_http->errors["OpenRequest"] = {12019};
    EXPECT_EQ(OpenFailure(), "");
    EXPECT_EQ(m_host.resets, 1);
    EXPECT_TRUE(Logged("E HttpRequest::OpenRequestWithRetries: HttpConnection::CreateRequest WinHttpOpenRequest "
                       "error ERROR_WINHTTP_INCORRECT_HANDLE_STATE 12019, retry 1"));

    m_http->errors["OpenRequest"] = {12019, 12001, 12001};
    EXPECT_EQ(OpenFailure(), "Failed to open HTTP request. 12001");
    EXPECT_EQ(m_host.resets, 2);
    EXPECT_TRUE(Logged("E HttpRequest::OpenRequestWithRetries: HttpConnection::CreateRequest WinHttpOpenRequest "
                       "error ERROR_WINHTTP_OUT_OF_HANDLES 12001, retry 0"));

    m_http->errors["OpenRequest"] = {12019};
    m_host.resetError = 12007;
    EXPECT_EQ(OpenFailure(), "Failed to open HTTP request. 12019");
    EXPECT_EQ(m_http->openHandles, 0);
}

TEST_F(HttpRequestTest, ResendsOnceWhereWinHttpAsksForIt)
{
    const struct {
        DWORD first, second; ///< errors of the sends
        DWORD flags;         ///< error of the query of option 31, the security flags
        DWORD result;
        int sendCount;
        const char* line;
    } kCases[] = {
        {0, 0, 0, 0, 1, "T Exit : HttpRequest::Send"},
        {12032, 0, 0, 0, 2, "T HttpRequest::Send: retry successful."},
        {12032, 12032, 0, 12032, 2, "W HttpRequest::Send: error ERROR_WINHTTP_RESEND_REQUEST 12032, retry failed."},
        {12175, 0, 0, 0, 2, "T HttpRequest::Send: retry successful."},
        {12175, 12002, 0, 12002, 2, "W HttpRequest::Send: error ERROR_WINHTTP_TIMEOUT 12002, retry failed."},
        {12175, 0, 12018, 12175, 1,
         "E HttpRequest::Send: HttpRequest::Send WinHttpSendRequest result ERROR_WINHTTP_SECURE_FAILURE 12175"},
        {12029, 0, 0, 12029, 1, "T HttpRequest::Send: error ERROR_WINHTTP_CANNOT_CONNECT 12029 retry flag not set."},
    };
    for (const auto& row : kCases) {
        SCOPED_TRACE(row.line);
        const auto request = Open();
        m_http->calls.clear();
        m_log->lines.clear();
        m_http->errors["SendRequest"] = {row.first, row.second};
        m_http->errors["QueryOption 31"] = {row.flags};
        EXPECT_EQ(Send(*request), row.result);
        EXPECT_EQ(Calls("SendRequest body"), row.sendCount);
        EXPECT_TRUE(Logged(row.line)) << ::testing::PrintToString(m_log->lines);
        EXPECT_TRUE(m_certificateValid); // pinning is off
        EXPECT_FALSE(Logged("T HttpRequest::ValidateServerCert: Available pinning certificates:"));
    }
}

TEST_F(HttpRequestTest, AcceptsExactlyWhatAPinnedIssuerSigned)
{
    m_host.isPinning = true;
    m_host.pinned = LoadCertificates("issuers");
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
    for (const auto& [server, verdict, issuer] : kCases) {
        SCOPED_TRACE(server ? server : "no certificate");
        const auto certificates = server ? LoadCertificates(server) : std::vector<Certificate>();
        m_http->serverCertificate = server ? certificates.front().Get() : nullptr;
        const auto request = Open();
        m_log->lines.clear();
        EXPECT_EQ(Send(*request), 0u);
        EXPECT_EQ(request->Verdict(), verdict);
        EXPECT_EQ(m_certificateValid, verdict == CertificateVerdict::accepted);
        EXPECT_EQ(Logged("T HttpRequest::ValidateServerCert: Verified: 1"), issuer != nullptr);
        if (issuer) { // shown among what is available, and as matching
            const std::string subject = "T HttpRequest::ValidateServerCert: Certificate Subject: ";
            EXPECT_EQ(std::count(m_log->lines.begin(), m_log->lines.end(), subject + issuer), 2);
        }
    }
    m_http->errors["SendRequest"] = {12029};
    EXPECT_EQ(Send(*Open()), 12029u); // the missing certificate does not hide why
    EXPECT_TRUE(Logged("W HttpRequest::Send: Unable to parse certificate data from connection: "
                       "ERROR_WINHTTP_CANNOT_CONNECT"));
}

TEST_F(HttpRequestTest, AReplyWithoutEndIsCut)
{
    const std::string megabytes(15 * 1024 * 1024, 'x');
    m_http->bodyPieces = {megabytes, megabytes, "never read"};
    HttpResponse response;
    EXPECT_EQ(Open()->ReadResponse(response), 0u);
    EXPECT_EQ(response.body.size(), megabytes.size());
    EXPECT_EQ(response.status, 200u);
    EXPECT_TRUE(Logged("W HttpRequest::ReadPayload: The reply is cut after 15728640 bytes: at most 16777216 bytes "
                       "are read, for at most 60000 milliseconds."));
}

TEST_F(HttpRequestTest, EachFailingStepEndsTheReading)
{
    const struct {
        const char* operation;
        const char* line;
    } kCases[] = {
        {"ReceiveResponse", "E HttpRequest::AcceptResponse: HttpRequest::AcceptResponse WinHttpReceiveResponse result "
                            "ERROR_WINHTTP_TIMEOUT 12002"},
        {"QueryHeaders status", "E HttpRequest::ReadHeaders: HttpRequest::ReadHeaders WinHttpQueryHeaders failed to "
                                "read status code - error ERROR_WINHTTP_TIMEOUT 12002"},
        {"QueryHeaders block", "E HttpRequest::ReadHeaders: HttpRequest::ReadHeaders WinHttpQueryHeaders error "
                               "ERROR_WINHTTP_TIMEOUT 12002"},
        {"QueryDataAvailable", "E HttpRequest::ReadPayload: HttpRequest::ReadPayload WinHttpQueryDataAvailable error "
                               "ERROR_WINHTTP_TIMEOUT 12002"},
        {"ReadData", "E HttpRequest::ReadPayload: WinHttpReadData error ERROR_WINHTTP_TIMEOUT 12002"},
    };
    for (const auto& [operation, line] : kCases) {
        m_http->errors[operation] = {12002};
        m_http->bodyPieces = {"piece"};
        HttpResponse response;
        EXPECT_EQ(Open()->ReadResponse(response), 12002u);
        EXPECT_TRUE(Logged(line)) << operation;
    }
}

TEST_F(HttpRequestTest, HeadersAreAddedInTheOrderOfTheirNamesUntilOneFails)
{
    const HttpHeaders headers = {{L"B", L"B: 2"}, {L"A", L"A: 1"}, {L"C", L"C: 3"}};
    const auto request = Open();
    m_http->errors["AddRequestHeaders"] = {0, 12155};
    m_http->calls.clear();
    EXPECT_EQ(request->AddHeaders(headers), 12155u);
    EXPECT_EQ(m_http->calls, "AddRequestHeaders A: 1;AddRequestHeaders B: 2;");
    EXPECT_TRUE(Logged("E HttpRequest::AddHeaders: HttpRequest::AddHeaders WinHttpAddRequestHeaders error "
                       "ERROR_WINHTTP_HEADER_ALREADY_EXISTS 12155"));
}

} // namespace
} // namespace vantor
