#include "telemetry/http/http_connection.h"

#include "platform/last_error.h"
#include "run/log/log_texts.h"
#include "telemetry/winhttp/code_names.h"

#include <stdexcept>
#include <utility>

namespace vantor {
namespace {

bool IsConnectFailure(DWORD error)
{
    return error == ERROR_WINHTTP_TIMEOUT || error == ERROR_WINHTTP_CANNOT_CONNECT;
}

/// Whether the server's certificate was rejected, or a success status came without any certificate. Otherwise the error
/// of the send or receive says why no server was reached, or the status is that of a proxy that refused the tunnel.
bool IsUntrusted(const Exchange& exchange)
{
    const bool isGood = exchange.status >= HTTP_STATUS_OK && exchange.status < HTTP_STATUS_AMBIGUOUS;
    return exchange.verdict == CertificateVerdict::rejected || isGood;
}

void LogInvalidCertificate(CertificateVerdict verdict, bool isAnyPinned, const OperationLog& log)
{
    log.Error("HttpConnection::SendRequest invalid server certificate.");
    if (!isAnyPinned) {
        log.Error("There are no pinned certificates: no server is accepted.");
    } else if (verdict == CertificateVerdict::rejected) {
        log.Error(texts::kChainTrustedButNotPinned);
    }
}

} // namespace

HttpConnection::HttpConnection(HttpConnectionSettings settings, std::shared_ptr<IHTTP> http,
                               std::shared_ptr<ILogger> logger)
    : m_settings(std::move(settings)), m_HttpInterface(std::move(http)), m_logger(std::move(logger)),
      m_proxyManager(m_HttpInterface, m_settings.proxyCalls, m_logger, m_settings.http.userAgent)
{
    const OperationLog log = Log("HttpConnection::HttpConnection");
    if (!m_HttpInterface) {
        log.Error("Http implementation is null in HttpConnection::HttpConnection");
        throw std::runtime_error("Http implementation is null.");
    }
    m_proxyManager.InitConfig(m_settings.proxy);
    if (Reset() != ERROR_SUCCESS) {
        log.Error("Reset failed in HttpConnection::HttpConnection");
        throw std::runtime_error("Reset failed.");
    }
}

HttpConnection::~HttpConnection()
{
    if (!Close()) {
        Log("HttpConnection::~HttpConnection").Error("Unable to close connection");
    }
}

bool HttpConnection::Close()
{
    const OperationLog log = Log("HttpConnection::Close");
    bool closed = true;
    if (m_hConnection && !m_HttpInterface->CloseHandle(std::exchange(m_hConnection, nullptr))) {
        log.Error("m_HttpInterface->CloseHandle(m_hConnection) failed");
        closed = false;
    }
    if (m_hSession && !m_HttpInterface->CloseHandle(std::exchange(m_hSession, nullptr))) {
        log.Error("m_HttpInterface->CloseHandle(m_hSession) failed");
        closed = false;
    }
    return closed;
}

DWORD HttpConnection::CheckConnection() const
{
    return m_hConnection ? ERROR_SUCCESS : ERROR_WINHTTP_INCORRECT_HANDLE_STATE;
}

DWORD HttpConnection::Reset()
{
    const TracedOperation log(m_logger, texts::kHttpConnectionReset);
    const std::lock_guard lock(m_resetMutex);
    Close();
    const DWORD result = OpenHandles(log);
    if (result != ERROR_SUCCESS) {
        Close();
    }
    return result;
}

DWORD HttpConnection::OpenHandles(const OperationLog& log)
{
    const auto fail = [&log](const char* call) {
        const DWORD error = LastErrorOr(ERROR_WINHTTP_INTERNAL_ERROR);
        log.Error(std::string("HttpConnection::Reset ") + call + " error " + NamedWinHttpError(error));
        return error;
    };
    HttpTimeouts& timeouts = m_settings.timeouts;

    ::SetLastError(ERROR_SUCCESS); // a missing session fails without a Windows call
    m_hSession = m_proxyManager.OpenSession(&timeouts.connectTimeoutMillisec);
    if (!m_hSession) {
        return fail("WinHttpOpen");
    }
    if (!m_HttpInterface->SetTimeouts(m_hSession, static_cast<int>(timeouts.resolveTimeoutMillisec),
                                      static_cast<int>(timeouts.connectTimeoutMillisec),
                                      static_cast<int>(timeouts.sendTimeoutMillisec),
                                      static_cast<int>(timeouts.receiveTimeoutMillisec))) {
        return fail("WinHttpSetTimeouts");
    }
    DWORD protocols = WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_2;
    if (!m_HttpInterface->SetOption(m_hSession, WINHTTP_OPTION_SECURE_PROTOCOLS, &protocols, sizeof(protocols))) {
        return fail("WinHttpSetOption");
    }
    DWORD newerProtocols = 0;
    if (!m_HttpInterface->SetOption(m_hSession, WINHTTP_OPTION_ENABLE_HTTP_PROTOCOL, &newerProtocols,
                                    sizeof(newerProtocols))) {
        if (const DWORD error = fail("WinHttpSetOption"); error != ERROR_WINHTTP_INVALID_OPTION) {
            return error;
        }
        log.Trace(texts::kToleratedNoNewerProtocol);
    }
    m_hConnection = m_HttpInterface->Connect(m_hSession, m_settings.http.server.c_str(), m_settings.http.port, 0);
    if (!m_hConnection) {
        return fail("WinHttpConnect");
    }
    return ERROR_SUCCESS;
}

std::unique_ptr<HttpRequest> HttpConnection::CreateRequest(const HttpTarget& target)
{
    return std::make_unique<HttpRequest>(*this, m_HttpInterface, m_logger, target.objectName, target.verb,
                                         WINHTTP_FLAG_SECURE);
}

void HttpConnection::Query(const HttpTarget& target, HttpHeaders headers, std::optional<std::string_view> body,
                           HttpResponse& response)
{
    const TracedOperation log(m_logger, "HttpConnection::Query");
    response.result = CheckConnection();
    if (response.result != ERROR_SUCCESS) {
        return;
    }
    const std::uint64_t maxSize = m_settings.http.maxSize;
    if (body && maxSize != 0 && body->size() > maxSize) {
        log.Error("VRI payload of size " + std::to_string(body->size()) +
                  " bytes is oversized. Maximum size of VRI payload is " + std::to_string(maxSize) + " bytes.");
        response.result = ERROR_INVALID_PARAMETER;
        return;
    }

    std::string compressed;
    if (body && m_settings.compressor) {
        headers[L"Content-Encoding"] = L"Content-Encoding: gzip";
        compressed = m_settings.compressor->Compress(*body);
        body = compressed;
    }
    headers[L"Content-Length"] = L"Content-Length: " + std::to_wstring(body ? body->size() : 0);
    log.Trace("Executing query, post data " + std::string(body.value_or("WINHTTP_NO_REQUEST_DATA")));

    std::unique_ptr<HttpRequest> request;
    response.result = SendRequest(request, target, headers, body);
    while (IsConnectFailure(response.result) && m_proxyManager.ProxyFallbackIsConfigured() &&
           m_proxyManager.ShouldFallBack()) {
        log.Warning(texts::kUsingProxyFallback);
        request.reset();
        response.result = Reset();
        if (response.result == ERROR_SUCCESS) {
            response.result = SendRequest(request, target, headers, body);
        }
    }
    if (response.result != ERROR_SUCCESS) {
        log.Warning("Failed to send http request");
        return;
    }
    response.result = request->ReadResponse(response);
    if (response.result != ERROR_SUCCESS) {
        log.Warning("Failed to get response");
    }
}

DWORD HttpConnection::SendRequest(std::unique_ptr<HttpRequest>& request, const HttpTarget& target,
                                  const HttpHeaders& headers, std::optional<std::string_view> body)
{
    const TracedOperation log(m_logger, texts::kHttpConnectionSendRequest);
    if (const DWORD error = CheckConnection(); error != ERROR_SUCCESS) {
        log.Error("no connection: " + NamedWinHttpError(error));
        return error;
    }

    C_HTTPProxyAuthListManager schemes(m_proxyManager, m_logger);
    for (int retries = 1;; ++retries) {
        const Attempt attempt = SendAttempt(request, schemes, target, headers, body, log);
        if (!attempt.again) {
            if (attempt.result != ERROR_SUCCESS) {
                log.Error("HTTPRequest::Send() failed, not retrying");
            }
            return attempt.result;
        }
        log.Warning(texts::kSendFailedRetrying + std::to_string(retries));
    }
}

HttpConnection::Attempt HttpConnection::SendAttempt(std::unique_ptr<HttpRequest>& request,
                                                    C_HTTPProxyAuthListManager& schemes, const HttpTarget& target,
                                                    const HttpHeaders& headers, std::optional<std::string_view> body,
                                                    const OperationLog& log)
{
    request.reset(); // close the old handle before opening the new one
    try {
        request = CreateRequest(target);
    } catch (const HttpRequestError& error) {
        log.Error(error.what());
        return {error.Code(), false};
    }

    Exchange exchange;
    ::SetLastError(ERROR_SUCCESS); // the set-up can fail without a Windows call
    const bool prepared = schemes.InitRequest(m_hSession, *request, L"https://" + m_settings.http.server);
    if (!prepared) {
        exchange.error = LastErrorOr(ERROR_WINHTTP_LOGIN_FAILURE);
        log.Error("HttpConnection::SendRequest ProxyManager::InitRequest failed err = " +
                  WinHttpErrorName(exchange.error));
    } else {
        exchange = SendPrepared(*request, headers, body, log);
    }
    if (!schemes.CleanRequest()) {
        log.Trace("Clean request failed =0");
    }

    if (IsUntrusted(exchange)) {
        LogInvalidCertificate(exchange.verdict, !m_settings.pinnedCertificates.empty(), log);
        return {ERROR_WINHTTP_SECURE_FAILURE, false};
    }
    if (exchange.status != 0 && exchange.status != HTTP_STATUS_PROXY_AUTH_REQ) {
        log.Error(texts::kProxyDidNotBuildTunnel + std::to_string(exchange.status) + '.');
    }
    if (prepared) { // otherwise there is no answer to learn from, and the queue stays unchanged
        schemes.FindNextAuthenticationScheme(*request);
    }
    return {exchange.error, schemes.WantsAnotherAttempt()};
}

Exchange HttpConnection::SendPrepared(HttpRequest& request, const HttpHeaders& headers,
                                      std::optional<std::string_view> body, const OperationLog& log)
{
    const std::string_view data = body.value_or("");
    bool certificateValid = false; // unused: the verdict says more
    bool retry = false;
    DWORD error = request.AddHeaders(headers);
    for (bool again = error == ERROR_SUCCESS; again;) {
        error = request.Send({}, data, static_cast<DWORD>(data.size()), certificateValid, retry);
        // With a rejected certificate nothing is received: WinHTTP would answer the server's challenges and could send
        // the body again. The request keeps the answer: it may be the proxy's challenge; otherwise it is read later.
        again = error == ERROR_SUCCESS && request.Verdict() != CertificateVerdict::rejected &&
                request.AcceptResponse() == ERROR_WINHTTP_RESEND_REQUEST && request.MaySendAgain();
        if (again) {
            log.Trace("ERROR_WINHTTP_RESEND_REQUEST, retry");
        }
    }
    if (error != ERROR_SUCCESS) {
        log.Error("HTTPRequest::Send() failed: " + NamedWinHttpError(error));
        return {error, request.Verdict()};
    }
    return request.Outcome();
}

} // namespace vantor
