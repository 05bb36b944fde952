// One HTTP exchange on an open connection.
#pragma once

#include "run/log/operation_log.h"
#include "telemetry/request/certificate.h"
#include "telemetry/winhttp/http_interface.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vantor {

/// What a request needs of the connection that it is opened on.
class IRequestHost {
public:
    virtual ~IRequestHost() = default;

    virtual HINTERNET ConnectionHandle() const = 0;
    virtual bool IsPinningCertificates() const = 0;
    virtual std::span<const Certificate> PinnedCertificates() const = 0;

    /// Opens session and connection anew; returns 0 or the error.
    virtual DWORD Reset() = 0;
};

/// Header names with their complete header lines.
using HttpHeaders = std::map<std::wstring, std::wstring>;

/// What a server answered.
struct HttpResponse {
    DWORD result = 0;     ///< WinHTTP error code of the query; 0: an answer was received
    DWORD status = 0;     ///< HTTP status code
    std::wstring headers; ///< raw header block with CRLF line ends
    std::vector<std::uint8_t> body;
};

/// A request that could not be opened.
class HttpRequestError : public std::runtime_error {
public:
    HttpRequestError(const char* message, DWORD code) : std::runtime_error(message), m_code(code) {}

    /// The Windows error.
    DWORD Code() const { return m_code; }

private:
    DWORD m_code;
};

/// What is known of the server's certificate after a send.
enum class CertificateVerdict {
    unknown,  ///< no certificate could be had: no server was reached
    rejected, ///< none of the pinned issuers signed it
    accepted  ///< a pinned issuer signed it, or pinning is off
};

/// What came of sending a request: who answered, and how.
struct Exchange {
    DWORD error = ERROR_SUCCESS; ///< of setting up or sending; also of receiving, where no server was reached
    CertificateVerdict verdict = CertificateVerdict::unknown;
    DWORD status = 0; ///< of an answer without a server's certificate, which is the proxy's; otherwise 0
};

/// Driven by the connection: open (by the constructor), AddHeaders, Send, ReadResponse. Errors are WinHTTP error
/// codes, 0 for success, and are logged with their names where they happen. The destructor closes the handle.
class HttpRequest {
public:
    /// The host outlives the request. objectName is the URL's path, flags are those of WinHttpOpenRequest.
    /// Throws HttpRequestError when the request cannot be opened, also not after a reset of the connection.
    HttpRequest(IRequestHost& host, std::shared_ptr<IHTTP> http, std::shared_ptr<ILogger> logger,
                const std::wstring& objectName, const std::wstring& verb, DWORD flags);
    ~HttpRequest();
    HttpRequest(const HttpRequest&) = delete;
    HttpRequest& operator=(const HttpRequest&) = delete;

    /// Adds each complete header line, in the order of the names.
    DWORD AddHeaders(const HttpHeaders& headers);

    /// Sends the headers and the body, again where WinHTTP asks for it, as the steps of a logon at the proxy do; then
    /// judges the server's certificate. certificateValid says whether it is acceptable; retry is always false.
    DWORD Send(std::wstring_view headers, std::string_view body, DWORD totalLength, bool& certificateValid,
               bool& retry);

    /// Whether one of the pinned issuers signed the server's certificate; true without a check when pinning is off.
    /// Throws std::runtime_error when the request has no certificate.
    bool ValidateServerCert(IHTTP& http, HINTERNET request);

    /// Whether the request may be sent once more. A logon of several steps asks for that, a proxy that never has
    /// enough asks for ever; each send may carry the body.
    bool MaySendAgain() const { return m_sends < kMaxSends; }

    CertificateVerdict Verdict() const { return m_verdict; }

    /// What came of a send that succeeded, once the answer was received.
    Exchange Outcome();

    /// Receives the answer; done once after a send, a second call returns the first result. Judges the server's
    /// certificate where the send had none to judge and the answer is not the proxy's 407.
    DWORD AcceptResponse();

    /// Receives the answer unless that is done, then reads status, headers and body. A body over 1 MiB, or one that
    /// takes over 60 seconds, is cut there with a warning.
    DWORD ReadResponse(HttpResponse& response);

    void Close();

    /// The error with which receiving the answer failed; 0 when it did not fail, or was not tried.
    DWORD ReportedError() const { return m_received.value_or(0); }

    /// Queries the answer's status code (WINHTTP_QUERY_STATUS_CODE as a number). A send that failed because the logon was refused counts as the proxy's 407 also when WinHTTP kept no answer.
    DWORD QueryStatusCode(DWORD& status);
    BOOL QueryAuthSchemes(DWORD& supportedSchemes, DWORD& firstScheme, DWORD& authTarget);

    /// Also before every further send of this request: WinHTTP takes credentials for one send only.
    BOOL SetCredentials(DWORD authTarget, DWORD authScheme, const wchar_t* userName, const wchar_t* password);
    BOOL SetOption(DWORD option, void* buffer, DWORD length);

private:
    OperationLog Log(const char* operation) const { return {m_logger, operation}; }
    TracedOperation Trace(const char* operation) const { return TracedOperation(m_logger, operation); }

    bool Open(const std::wstring& objectName, const std::wstring& verb, DWORD flags);
    DWORD OpenRequestWithRetries(const std::wstring& objectName, const std::wstring& verb, DWORD flags);
    DWORD SendWithResend(std::wstring_view headers, std::string_view body, DWORD totalLength, const OperationLog& log);
    DWORD SendOnce(std::wstring_view headers, std::string_view body, DWORD totalLength);
    DWORD SendAgain(std::wstring_view headers, std::string_view body, DWORD totalLength, const OperationLog& log);
    Certificate ServerCertificate(IHTTP& http, HINTERNET request) const;
    bool IsServerForeign() const;
    void JudgeCertificate(const OperationLog& log);
    DWORD ReadHeaders(DWORD& status, std::wstring& headers);
    DWORD ReadPayload(std::vector<std::uint8_t>& body);

    static constexpr int kMaxSends = 4;

    /// As they were set.
    struct Credentials {
        DWORD target, scheme;
        std::wstring userName, password;
    };

    IRequestHost& m_host;
    HINTERNET m_handle = nullptr;
    std::shared_ptr<IHTTP> m_HttpInterface;
    std::shared_ptr<ILogger> m_logger;
    CertificateVerdict m_verdict = CertificateVerdict::unknown;
    int m_sends = 0;
    std::optional<Credentials> m_credentials;
    DWORD m_sent = 0;                ///< result of the last send
    std::optional<DWORD> m_received; ///< result of receiving the answer, once that was tried
};

} // namespace vantor
