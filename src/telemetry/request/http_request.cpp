#include "telemetry/request/http_request.h"

#include "platform/last_error.h"
#include "platform/owner.h"
#include "run/log/log_texts.h"
#include "telemetry/winhttp/code_names.h"

#include <utility>

namespace vantor {
namespace {

/// The body for WinHttpSendRequest, which takes a non-const pointer but does not write to it.
void* SendableBody(std::string_view body)
{
    return body.empty() ? WINHTTP_NO_REQUEST_DATA : const_cast<char*>(body.data());
}

} // namespace

HttpRequest::HttpRequest(IRequestHost& host, std::shared_ptr<IHTTP> http, std::shared_ptr<ILogger> logger,
                         const std::wstring& objectName, const std::wstring& verb, DWORD flags)
    : m_host(host), m_HttpInterface(std::move(http)), m_logger(std::move(logger))
{
    const TracedOperation log = Trace("HttpRequest::HttpRequest");
    const DWORD error = OpenRequestWithRetries(objectName, verb, flags);
    if (!m_handle) {
        throw HttpRequestError("Failed to open HTTP request.", error);
    }
}

HttpRequest::~HttpRequest()
{
    const TracedOperation log = Trace("HttpRequest::~HttpRequest");
    Close();
}

bool HttpRequest::Open(const std::wstring& objectName, const std::wstring& verb, DWORD flags)
{
    const TracedOperation log = Trace("HttpRequest::Open");
    m_handle = m_HttpInterface->OpenRequest(m_host.ConnectionHandle(), verb.c_str(), objectName.c_str(), nullptr,
                                            WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES, flags);
    if (m_handle) {
        DWORD autologon = WINHTTP_AUTOLOGON_SECURITY_LEVEL_HIGH;
        if (!m_HttpInterface->SetOption(m_handle, WINHTTP_OPTION_AUTOLOGON_POLICY, &autologon, sizeof(autologon))) {
            const DWORD error = ::GetLastError();
            log.Error("HttpRequest::Open WinHttpSetOption error " + NamedWinHttpError(error) +
                      ": the automatic logon stays as it is.");
        }
        // A redirect's target would not be checked against the pinned issuers, so the report must not follow one.
        DWORD redirects = WINHTTP_OPTION_REDIRECT_POLICY_NEVER;
        if (!m_HttpInterface->SetOption(m_handle, WINHTTP_OPTION_REDIRECT_POLICY, &redirects, sizeof(redirects))) {
            const LastErrorKeeper error;
            log.Error("HttpRequest::Open WinHttpSetOption error " + NamedWinHttpError(error.Error()) +
                      ": redirects cannot be refused, and nothing is sent without that.");
            Close();
        }
    }
    return m_handle != nullptr;
}

/// Returns 0 if the request is open, otherwise the error of the last attempt.
DWORD HttpRequest::OpenRequestWithRetries(const std::wstring& objectName, const std::wstring& verb, DWORD flags)
{
    constexpr int kMaxRetries = 20; // never reached: the flag allows one retry after a successful reset

    const OperationLog log = Log("HttpRequest::OpenRequestWithRetries");
    DWORD error = ERROR_SUCCESS;
    bool retry = false;
    int retries = 0;
    do {
        if (Open(objectName, verb, flags)) {
            return ERROR_SUCCESS;
        }
        error = LastErrorOr(ERROR_WINHTTP_INTERNAL_ERROR);
        if (retry) {
            retry = false;
        } else if (m_host.Reset() == ERROR_SUCCESS) {
            retry = true;
            ++retries;
        }
        log.Error("HttpConnection::CreateRequest WinHttpOpenRequest error " + NamedWinHttpError(error) + ", retry " +
                  (retry ? "1" : "0"));
    } while (retry && retries < kMaxRetries);
    return error;
}

DWORD HttpRequest::AddHeaders(const HttpHeaders& headers)
{
    const TracedOperation log = Trace("HttpRequest::AddHeaders");
    for (const auto& [name, line] : headers) {
        if (!m_HttpInterface->AddRequestHeaders(m_handle, line.c_str(), static_cast<DWORD>(-1),
                                                WINHTTP_ADDREQ_FLAG_ADD)) {
            const DWORD error = LastErrorOr(ERROR_WINHTTP_INTERNAL_ERROR);
            log.Error("HttpRequest::AddHeaders WinHttpAddRequestHeaders error " + NamedWinHttpError(error));
            return error;
        }
    }
    return ERROR_SUCCESS;
}

DWORD HttpRequest::Send(std::wstring_view headers, std::string_view body, DWORD totalLength, bool& certificateValid,
                        bool& retry)
{
    const TracedOperation log = Trace(texts::kHttpRequestSend);
    retry = false;
    m_received.reset(); // a new send gets a new answer
    m_sent = SendWithResend(headers, body, totalLength, log);
    JudgeCertificate(log);
    certificateValid = m_verdict == CertificateVerdict::accepted;
    return m_sent;
}

DWORD HttpRequest::SendOnce(std::wstring_view headers, std::string_view body, DWORD totalLength)
{
    const wchar_t* const headerText = headers.empty() ? WINHTTP_NO_ADDITIONAL_HEADERS : headers.data();
    m_sends += 1;
    if (m_HttpInterface->SendRequest(m_handle, headerText, static_cast<DWORD>(headers.size()), SendableBody(body),
                                     static_cast<DWORD>(body.size()), totalLength, 0)) {
        return ERROR_SUCCESS;
    }
    return LastErrorOr(ERROR_WINHTTP_INTERNAL_ERROR);
}

DWORD HttpRequest::SendAgain(std::wstring_view headers, std::string_view body, DWORD totalLength,
                             const OperationLog& log)
{
    if (m_credentials) {
        const auto& [target, scheme, userName, password] = *m_credentials;
        if (!m_HttpInterface->SetCredentials(m_handle, target, scheme, userName.c_str(), password.c_str(), nullptr)) {
            const DWORD error = LastErrorOr(ERROR_WINHTTP_LOGIN_FAILURE);
            log.Error("HttpRequest::Send WinHttpSetCredentials error " + NamedWinHttpError(error));
            return error;
        }
    }
    return SendOnce(headers, body, totalLength);
}

DWORD HttpRequest::SendWithResend(std::wstring_view headers, std::string_view body, DWORD totalLength,
                                  const OperationLog& log)
{
    DWORD error = m_sends == 0 ? SendOnce(headers, body, totalLength) : SendAgain(headers, body, totalLength, log);
    if (error == ERROR_SUCCESS) {
        return ERROR_SUCCESS;
    }
    log.Error("HttpRequest::Send WinHttpSendRequest result " + NamedWinHttpError(error));
    bool again = error == ERROR_WINHTTP_RESEND_REQUEST && !IsServerForeign();
    if (error == ERROR_WINHTTP_SECURE_FAILURE) {
        DWORD flags = 0;
        DWORD size = sizeof(flags);
        again = m_HttpInterface->QueryOption(m_handle, WINHTTP_OPTION_SECURITY_FLAGS, &flags, &size);
    } else if (!again) {
        log.Trace("error " + NamedWinHttpError(error) + " retry flag not set.");
    }
    if (!again) {
        return error;
    }
    for (; again && MaySendAgain(); again = error == ERROR_WINHTTP_RESEND_REQUEST && !IsServerForeign()) {
        if (error == ERROR_WINHTTP_RESEND_REQUEST) {
            log.Trace("ERROR_WINHTTP_RESEND_REQUEST, retry");
        }
        error = SendAgain(headers, body, totalLength, log);
    }
    if (error == ERROR_SUCCESS) {
        log.Trace("retry successful.");
    } else {
        log.Warning("error " + NamedWinHttpError(error) + ", retry failed.");
    }
    return error;
}

void HttpRequest::JudgeCertificate(const OperationLog& log)
{
    try {
        m_verdict = ValidateServerCert(*m_HttpInterface, m_handle) ? CertificateVerdict::accepted
                                                                   : CertificateVerdict::rejected;
    } catch (const std::exception& error) {
        // A connection that was refused or never established has no certificate; the result of the send says why.
        m_verdict = CertificateVerdict::unknown;
        log.Warning(error.what());
    }
}

Certificate HttpRequest::ServerCertificate(IHTTP& http, HINTERNET request) const
{
    Certificate server;
    DWORD size = sizeof(PCCERT_CONTEXT);
    const bool isThere = http.QueryOption(request, WINHTTP_OPTION_SERVER_CERT_CONTEXT, server.Receive(), &size);
    return isThere ? std::move(server) : Certificate();
}

/// Whether a server was reached whose certificate no pinned issuer signed. Such a server must not get the body again.
bool HttpRequest::IsServerForeign() const
{
    const Certificate server = ServerCertificate(*m_HttpInterface, m_handle);
    return server && m_host.IsPinningCertificates() && !FindIssuer(server.Get(), m_host.PinnedCertificates());
}

bool HttpRequest::ValidateServerCert(IHTTP& http, HINTERNET request)
{
    const TracedOperation log = Trace("HttpRequest::ValidateServerCert");
    if (!http.IsReady() || !m_host.IsPinningCertificates()) {
        return true;
    }
    const Certificate server = ServerCertificate(http, request);
    if (!server) {
        const DWORD error = ::GetLastError();
        throw std::runtime_error(texts::kUnableToParseCertificate + WinHttpErrorName(error));
    }

    const auto pinned = m_host.PinnedCertificates();
    log.Trace("Available pinning certificates:");
    for (const Certificate& certificate : pinned) {
        LogVriInfo(certificate.Get(), log);
    }
    log.Trace("Server certificate info:");
    LogVriInfo(server.Get(), log);

    const PCCERT_CONTEXT issuer = FindIssuer(server.Get(), pinned);
    if (issuer) {
        log.Trace("Matching pinning certificate info:");
        LogVriInfo(issuer, log);
    } else {
        log.Error("Certificate in request not as expected.");
    }
    log.Trace(std::string(texts::kVerified) + (issuer ? "1" : "0"));
    return issuer != nullptr;
}

Exchange HttpRequest::Outcome()
{
    Exchange outcome{ERROR_SUCCESS, m_verdict};
    if (m_verdict == CertificateVerdict::unknown) {
        outcome.error = ReportedError() != ERROR_SUCCESS ? ReportedError() : QueryStatusCode(outcome.status);
    }
    return outcome;
}

DWORD HttpRequest::QueryStatusCode(DWORD& status)
{
    DWORD size = sizeof(status);
    const DWORD level = WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER;
    if (m_HttpInterface->QueryHeaders(m_handle, level, WINHTTP_HEADER_NAME_BY_INDEX, &status, &size,
                                      WINHTTP_NO_HEADER_INDEX)) {
        return ERROR_SUCCESS;
    }
    const DWORD error = LastErrorOr(ERROR_WINHTTP_INTERNAL_ERROR);
    if (m_sent == ERROR_WINHTTP_LOGIN_FAILURE) {
        status = HTTP_STATUS_PROXY_AUTH_REQ;
        return ERROR_SUCCESS;
    }
    return error;
}

BOOL HttpRequest::QueryAuthSchemes(DWORD& supportedSchemes, DWORD& firstScheme, DWORD& authTarget)
{
    return m_HttpInterface->QueryAuthSchemes(m_handle, &supportedSchemes, &firstScheme, &authTarget);
}

BOOL HttpRequest::SetCredentials(DWORD authTarget, DWORD authScheme, const wchar_t* userName, const wchar_t* password)
{
    m_credentials = {authTarget, authScheme, userName, password};
    return m_HttpInterface->SetCredentials(m_handle, authTarget, authScheme, userName, password, nullptr);
}

BOOL HttpRequest::SetOption(DWORD option, void* buffer, DWORD length)
{
    return m_HttpInterface->SetOption(m_handle, option, buffer, length);
}

void HttpRequest::Close()
{
    const TracedOperation log = Trace("HttpRequest::Close");
    if (m_handle && !m_HttpInterface->CloseHandle(std::exchange(m_handle, nullptr))) {
        log.Error("m_HttpInterface->CloseHandle failed");
    }
}

} // namespace vantor
