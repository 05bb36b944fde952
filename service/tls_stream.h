// TLS over one accepted socket, bounded in time and in bytes, as the stream that cpp-httplib reads and writes.
#pragma once

#include <httplib.h>

#include <chrono>
#include <memory>
#include <string>

namespace vantor::service {

struct SslContextRelease {
    void operator()(SSL_CTX* context) const { ::SSL_CTX_free(context); }
};
using SslContext = std::unique_ptr<SSL_CTX, SslContextRelease>;

/// A context for a server with this certificate (PEM, with its chain) and key (PEM), TLS 1.2 at least. Throws
/// std::runtime_error that names the file and what is wrong with it.
SslContext MakeServerContext(const std::string& certificateFile, const std::string& keyFile);

/// The server's end of a TLS connection. Every wait ends at a deadline, or at once when the socket is shut down.
class TlsStream final : public httplib::Stream {
public:
    using Milliseconds = std::chrono::milliseconds;

    /// Takes a connected, non-blocking socket, which stays the caller's.
    TlsStream(int socket, SSL_CTX* context);

    /// Shakes hands. Gives the reason when that fails, otherwise an empty text.
    std::string Handshake();

    /// Waits for the first byte of a request; false when the peer closed, or sent nothing for that long.
    bool WaitForRequest(Milliseconds idle);

    /// What has been read since WaitForRequest; asking for it ends the recording.
    std::string TakeTranscript();

    /// Waits, but not on when the peer closes.
    void Pause(Milliseconds duration);

    /// Cuts the connection, without TLS's own farewell. What follows fails.
    void Cut();

    /// Says farewell and lets the peer read the rest before the socket goes.
    void Close();

    bool is_readable() const override { return true; }
    bool is_writable() const override { return !m_broken; }
    ssize_t read(char* bytes, size_t size) override;
    ssize_t write(const char* bytes, size_t size) override;
    void get_remote_ip_and_port(std::string& address, int& port) const override;
    void get_local_ip_and_port(std::string& address, int& port) const override;
    socket_t socket() const override { return m_socket; }

private:
    using Clock = std::chrono::steady_clock;

    struct SslRelease {
        void operator()(SSL* ssl) const { ::SSL_free(ssl); }
    };

    bool WaitFor(short events, Clock::time_point deadline) const;
    template <typename Step>
    int Complete(Step step, Clock::time_point deadline);

    const int m_socket;
    std::unique_ptr<SSL, SslRelease> m_ssl;
    bool m_broken = false;
    bool m_recording = false;
    std::string m_transcript;
    std::size_t m_bytesLeft = 0;
    Clock::time_point m_requestDeadline;
};

} // namespace vantor::service
