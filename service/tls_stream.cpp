#include "service/tls_stream.h"

#include <poll.h>

#include <algorithm>
#include <stdexcept>
#include <system_error>

namespace vantor::service {
namespace {

using namespace std::chrono_literals;

constexpr auto kHandshakeLimit = 5s;
constexpr auto kRequestLimit = 20s;
constexpr auto kWriteLimit = 30s;
constexpr auto kFarewellLimit = 1s;
/// Head and body of a request, with room for a body that is refused only after it was read.
constexpr std::size_t kRequestLimitBytes = 4'194'304;
constexpr std::size_t kRecordBytes = 16'384; ///< the most that one TLS record holds

/// What OpenSSL says went wrong first; the errors behind it only repeat that it did.
std::string FirstSslError(const char* otherwise)
{
    const unsigned long error = ::ERR_peek_error();
    if (ERR_SYSTEM_ERROR(error)) {
        return std::generic_category().message(ERR_GET_REASON(error));
    }
    const char* reason = ::ERR_reason_error_string(error);
    return reason == nullptr ? otherwise : reason;
}

} // namespace

SslContext MakeServerContext(const std::string& certificateFile, const std::string& keyFile)
{
    ::ERR_clear_error();
    SslContext context(::SSL_CTX_new(::TLS_server_method()));
    if (context == nullptr || ::SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION) != 1) {
        throw std::runtime_error("TLS is not available: " + FirstSslError("unknown reason"));
    }
    ::SSL_CTX_set_options(context.get(), SSL_OP_NO_RENEGOTIATION);
    if (::SSL_CTX_use_certificate_chain_file(context.get(), certificateFile.c_str()) != 1) {
        throw std::runtime_error("cannot use the certificate \"" + certificateFile +
                                 "\": " + FirstSslError("unknown reason"));
    }
    if (::SSL_CTX_use_PrivateKey_file(context.get(), keyFile.c_str(), SSL_FILETYPE_PEM) != 1) {
        throw std::runtime_error("cannot use the key \"" + keyFile + "\": " + FirstSslError("unknown reason"));
    }
    return context;
}

TlsStream::TlsStream(int socket, SSL_CTX* context) : m_socket(socket), m_ssl(::SSL_new(context))
{
    if (m_ssl == nullptr || ::SSL_set_fd(m_ssl.get(), socket) != 1) {
        throw std::bad_alloc();
    }
}

std::string TlsStream::Handshake()
{
    m_broken = Complete([this] { return ::SSL_accept(m_ssl.get()); }, Clock::now() + kHandshakeLimit) <= 0;
    return m_broken ? FirstSslError("the peer was silent or closed") : std::string();
}

bool TlsStream::WaitForRequest(Milliseconds idle)
{
    m_bytesLeft = kRequestLimitBytes;
    m_transcript.clear();
    m_recording = true;
    char first;
    if (Complete([&] { return ::SSL_peek(m_ssl.get(), &first, 1); }, Clock::now() + idle) <= 0) {
        return false;
    }
    m_requestDeadline = Clock::now() + kRequestLimit;
    return true;
}

std::string TlsStream::TakeTranscript()
{
    m_recording = false;
    return std::move(m_transcript);
}

void TlsStream::Pause(Milliseconds duration)
{
    WaitFor(POLLRDHUP, Clock::now() + duration);
}

void TlsStream::Cut()
{
    m_broken = true;
    ::shutdown(m_socket, SHUT_RDWR);
}

void TlsStream::Close()
{
    if (m_broken) {
        return;
    }
    m_broken = true;
    ::SSL_shutdown(m_ssl.get());
    ::shutdown(m_socket, SHUT_WR);
    // Closing a socket with unread bytes resets the connection, and the peer may lose the answer.
    const auto deadline = Clock::now() + kFarewellLimit;
    char unread[kRecordBytes];
    while (WaitFor(POLLIN, deadline) && ::recv(m_socket, unread, sizeof unread, 0) > 0) {
    }
}

ssize_t TlsStream::read(char* bytes, size_t size)
{
    const auto wanted = static_cast<int>(std::min({size, m_bytesLeft, kRecordBytes}));
    if (m_broken || wanted == 0) {
        return -1;
    }
    const int count = Complete([&] { return ::SSL_read(m_ssl.get(), bytes, wanted); }, m_requestDeadline);
    if (count <= 0) {
        return count;
    }
    m_bytesLeft -= static_cast<std::size_t>(count);
    if (m_recording) {
        m_transcript.append(bytes, static_cast<std::size_t>(count));
    }
    return count;
}

ssize_t TlsStream::write(const char* bytes, size_t size)
{
    if (m_broken) {
        return -1;
    }
    const auto wanted = static_cast<int>(std::min(size, kRecordBytes));
    const int count = Complete([&] { return ::SSL_write(m_ssl.get(), bytes, wanted); }, Clock::now() + kWriteLimit);
    m_broken = count <= 0;
    return m_broken ? -1 : count;
}

void TlsStream::get_remote_ip_and_port(std::string& address, int& port) const
{
    // Always this machine; which of its ports is of no interest.
    address = "localhost";
    port = 0;
}

void TlsStream::get_local_ip_and_port(std::string& address, int& port) const
{
    get_remote_ip_and_port(address, port);
}

bool TlsStream::WaitFor(short events, Clock::time_point deadline) const
{
    for (;;) {
        const auto left = std::chrono::ceil<Milliseconds>(deadline - Clock::now()).count();
        if (left <= 0) {
            return false;
        }
        pollfd wait{m_socket, events, 0};
        if (::poll(&wait, 1, static_cast<int>(std::min<std::int64_t>(left, 60'000))) > 0) {
            return true;
        }
    }
}

/// Repeats a call of OpenSSL until it is through. Gives its result, or -1 at the deadline; 0 or less is a failure.
template <typename Step>
int TlsStream::Complete(Step step, Clock::time_point deadline)
{
    for (;;) {
        ::ERR_clear_error();
        const int result = step();
        if (result > 0) {
            return result;
        }
        const int reason = ::SSL_get_error(m_ssl.get(), result);
        if (reason == SSL_ERROR_ZERO_RETURN) {
            return 0;
        }
        const bool reads = reason == SSL_ERROR_WANT_READ;
        if (!reads && reason != SSL_ERROR_WANT_WRITE) {
            return -1;
        }
        if (!WaitFor(reads ? POLLIN : POLLOUT, deadline)) {
            return -1;
        }
    }
}

} // namespace vantor::service
