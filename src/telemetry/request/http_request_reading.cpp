// The second half of HttpRequest: receiving and reading the answer.
#include "run/log/log_texts.h"
#include "telemetry/request/http_request.h"

#include "platform/last_error.h"
#include "platform/text/encoding.h"
#include "telemetry/winhttp/code_names.h"

#include <algorithm>

namespace vantor {
namespace {

/// The service's replies are a few bytes long. An endless one must not use up memory or time, or fill the disk through
/// the log. WinHTTP's timeouts limit only a single read, so the deadline is checked between reads.
constexpr std::size_t kReplyLimitBytes = 1 << 20;
constexpr std::uint64_t kReadDeadlineMs = 60'000;
constexpr std::size_t kSmallestBuffer = 32768;

} // namespace

DWORD HttpRequest::AcceptResponse()
{
    if (m_received) {
        return *m_received;
    }
    const TracedOperation log = Trace("HttpRequest::AcceptResponse");
    m_received = ERROR_SUCCESS;
    if (!m_HttpInterface->ReceiveResponse(m_handle, nullptr)) {
        m_received = LastErrorOr(ERROR_WINHTTP_INTERNAL_ERROR);
        log.Error("HttpRequest::AcceptResponse WinHttpReceiveResponse result " + NamedWinHttpError(*m_received));
    } else if (m_verdict == CertificateVerdict::unknown) {
        // WinHTTP may finish a proxy logon only at this point, and so reach the server only after the send.
        DWORD status = 0;
        QueryStatusCode(status);
        if (status != HTTP_STATUS_PROXY_AUTH_REQ) {
            JudgeCertificate(log);
        }
    }
    return *m_received;
}

DWORD HttpRequest::ReadResponse(HttpResponse& response)
{
    const TracedOperation log = Trace(texts::kHttpRequestReadResponse);
    DWORD result = AcceptResponse();
    if (result == ERROR_SUCCESS) {
        result = ReadHeaders(response.status, response.headers);
    }
    if (result == ERROR_SUCCESS) {
        result = ReadPayload(response.body);
    }
    return result;
}

DWORD HttpRequest::ReadHeaders(DWORD& status, std::wstring& headers)
{
    const TracedOperation log = Trace("HttpRequest::ReadHeaders");
    if (const DWORD error = QueryStatusCode(status); error != ERROR_SUCCESS) {
        log.Error("HttpRequest::ReadHeaders WinHttpQueryHeaders failed to read status code - error " +
                  NamedWinHttpError(error));
        return error;
    }

    const auto query = [this](void* buffer, DWORD& size) -> DWORD {
        const BOOL done =
            m_HttpInterface->QueryHeaders(m_handle, WINHTTP_QUERY_RAW_HEADERS_CRLF, WINHTTP_HEADER_NAME_BY_INDEX,
                                          buffer, &size, WINHTTP_NO_HEADER_INDEX);
        return done ? ERROR_SUCCESS : LastErrorOr(ERROR_WINHTTP_INTERNAL_ERROR);
    };
    DWORD size = 0;
    DWORD result = query(WINHTTP_NO_OUTPUT_BUFFER, size);
    if (result == ERROR_INSUFFICIENT_BUFFER) {
        headers.resize(size / sizeof(wchar_t));
        result = query(headers.data(), size);
    }
    if (result != ERROR_SUCCESS) {
        headers.clear();
        log.Error("HttpRequest::ReadHeaders WinHttpQueryHeaders error " + NamedWinHttpError(result));
        return result;
    }
    headers.resize(std::min(size / sizeof(wchar_t), headers.size())); // the second call does not count the final NUL
    log.Trace(texts::kResponseHeaders + ToNarrow(headers));
    return ERROR_SUCCESS;
}

DWORD HttpRequest::ReadPayload(std::vector<std::uint8_t>& body)
{
    const TracedOperation log = Trace("HttpRequest::ReadPayload");
    const std::uint64_t start = ::GetTickCount64();
    std::size_t total = 0;
    DWORD result = ERROR_SUCCESS;
    for (;;) {
        DWORD available = 0;
        if (!m_HttpInterface->QueryDataAvailable(m_handle, &available)) {
            result = LastErrorOr(ERROR_WINHTTP_INTERNAL_ERROR);
            log.Error("HttpRequest::ReadPayload WinHttpQueryDataAvailable error " + NamedWinHttpError(result));
            return result;
        }
        if (available == 0) {
            break;
        }
        if (available > kReplyLimitBytes - total || ::GetTickCount64() - start > kReadDeadlineMs) {
            log.Warning("The reply is cut after " + std::to_string(total) + " bytes: at most " +
                        std::to_string(kReplyLimitBytes) + " bytes are read, for at most " +
                        std::to_string(kReadDeadlineMs) + " milliseconds.");
            break;
        }
        if (body.size() < total + available) {
            body.resize(std::max(total + available, kSmallestBuffer));
        }
        DWORD read = 0;
        if (!m_HttpInterface->ReadData(m_handle, body.data() + total, available, &read)) {
            result = LastErrorOr(ERROR_WINHTTP_INTERNAL_ERROR);
            log.Error("WinHttpReadData error " + NamedWinHttpError(result));
            break;
        }
        total += std::min(read, available);
        if (read == 0) {
            break;
        }
    }
    body.resize(total);
    log.Trace("Response data: " + std::string(body.begin(), body.end()));
    return result;
}

} // namespace vantor
