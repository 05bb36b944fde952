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

/// What a request needs from its connection.
class IRequestHost {
public:
    virtual ~IRequestHost() = default;

    virtual HINTERNET ConnectionHandle() const = 0;
    virtual bool IsPinningCertificates() const = 0;
    virtual std::span<const Certificate> PinnedCertificates() const = 0;

    /// Reopens the session and the connection; returns 0 or the error.
    virtual DWORD Reset() = 0;
};

/// Complete header lines by header name.
using HttpHeaders = std::map<std::wstring, std::wstring>;

/// The server's answer.
struct HttpResponse {
    DWORD result = 0;     ///< WinHTTP error code of the query; 0 if an answer was received
    DWORD status = 0;     ///< HTTP status code
    std::wstring headers; ///< raw header block with CRLF line ends
    std::vector<std::uint8_t> body;
};

/// Thrown when a request cannot be opened.
class HttpRequestError : public std::runtime_error {
public:
    HttpRequestError(const char* message, DWORD code) : std::runtime_error(message), m_code(code) {}

    /// The Windows error code.
    DWORD Code() const { return m_code; }

private:
    DWORD m_code;
};

/// What is known about the server's certificate after a send.
enum class CertificateVerdict {
    unknown,  ///< there is no certificate: no server was reached
    rejected, ///< no pinned issuer signed it
    accepted  ///< a pinned issuer signed it, or pinning is off
};

/// The result of sending a request: who answered, and how.
struct Exchange {
    DWORD error = ERROR_SUCCESS; ///< from setting up or sending; also from receiving if no server was reached
    CertificateVerdict verdict = CertificateVerdict::unknown;
    DWORD status = 0; ///< of an answer without a server certificate, which is the proxy's; otherwise 0
};

/// The connection calls, in this order: constructor (opens the request), AddHeaders, Send, ReadResponse. Errors are
/// WinHTTP error codes, 0 for success, and are logged by name where they occur. The destructor closes the handle.
class HttpRequest {
public:
    /// The host must outlive the request. objectName is the URL's path; flags are those of WinHttpOpenRequest.
    /// Throws HttpRequestError if the request cannot be opened even after a reset of the connection.
    HttpRequest(IRequestHost& host, std::shared_ptr<IHTTP> http, std::shared_ptr<ILogger> logger,
                const std::wstring& objectName, const std::wstring& verb, DWORD flags);
    ~HttpRequest();
    HttpRequest(const HttpRequest&) = delete;
    HttpRequest& operator=(const HttpRequest&) = delete;

    /// Adds each header line, in the order of the names.
    DWORD AddHeaders(const HttpHeaders& headers);

    /// Sends the headers and the body, repeatedly if WinHTTP asks for it, as it does in a multi-step proxy logon; then
    /// checks the server's certificate. Sets certificateValid to the result of that check, and retry always to false.
    DWORD Send(std::wstring_view headers, std::string_view body, DWORD totalLength, bool& certificateValid,
               bool& retry);

    /// Whether a pinned issuer signed the server's certificate; true without a check if pinning is off.
    /// Throws std::runtime_error if the request has no certificate.
    bool ValidateServerCert(IHTTP& http, HINTERNET request);

    /// Whether the request may be sent again. A multi-step logon needs that, but a faulty proxy could ask for it
    /// forever, and each send may carry the body.
    bool MaySendAgain() const { return m_sends < kMaxSends; }

    CertificateVerdict Verdict() const { return m_verdict; }

    /// The result of a successful send, once its answer has been received.
    Exchange Outcome();

    /// Receives the answer; a second call after the same send returns the first result. Checks the server's certificate
    /// if there was none yet after the send and the answer is not the proxy's 407.
    DWORD AcceptResponse();

    /// Receives the answer if that is still to be done, then reads status, headers and body. A body is cut off at 1 MiB
    /// or after 60 seconds, with a warning.
    DWORD ReadResponse(HttpResponse& response);

    void Close();

    /// The error from receiving the answer; 0 if that succeeded or was not tried.
    DWORD ReportedError() const { return m_received.value_or(0); }

    /// Queries the status code of the answer (WINHTTP_QUERY_STATUS_CODE as a number). A send that failed with
    /// ERROR_WINHTTP_LOGIN_FAILURE gives 407 even if WinHTTP kept no answer.
    DWORD QueryStatusCode(DWORD& status);
    BOOL QueryAuthSchemes(DWORD& supportedSchemes, DWORD& firstScheme, DWORD& authTarget);

    /// Repeated before every further send of this request, because WinHTTP uses credentials for one send only.
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

    /// The arguments of SetCredentials.
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
    std::optional<DWORD> m_received; ///< result of receiving the answer; empty if not tried yet
};

} // namespace vantor
