// The local receiver: an HTTPS server on this machine that receives pulses.
#pragma once

#include "inspect/pulse_text.h"
#include "receiver/behaviour.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace httplib {
class ContentReader;
class SSLServer;
struct Request;
struct Response;
} // namespace httplib

namespace vantor::receiver {

struct ReceiverConfig {
    std::string certificateFile; ///< PEM, the server's certificate first
    std::string keyFile;         ///< PEM
    std::uint16_t port = 0;      ///< 0: any that is free
};

struct ReceivedRequest {
    std::string method;
    std::string target; ///< as the request line has it
    /// Sorted by name, ignoring case; those of one name in order of arrival.
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;    ///< of a POST to /1, byte for byte; empty when it was not read or is too large
    std::string refusal; ///< why it was refused; empty for a well-formed pulse
};

using inspect::DatedPulse;

/// what() says why the receiver cannot start.
class ReceiverError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Answers on https://localhost, over IPv4: POST /1 with 200 for a well-formed pulse and 400 with the reason for
/// another; another verb there with 405, another path with 404, a body without a length with 411, one over 64 KiB with
/// 413 and a compressed or multipart one with 415; GET / with a page of the pulses, filtered by the queries "mode", "bit"
/// and "host" (such requests are not kept). The transport is cpp-httplib's. Every operation but Start, Stop and SetCallbacks
/// may be called from any thread at any time.
class Receiver {
public:
    /// How many pulses, and how many requests, are kept: the latest.
    static constexpr std::size_t kMaxKept = 1000;

    /// How many connections are served at a time. Others wait until one ends, which an idle one does within seconds.
    static constexpr std::size_t kMaxConnections = 128;

    using PulseCallback = std::function<void(const DatedPulse&)>;
    using RefusalCallback = std::function<void(const std::string& line)>;

    explicit Receiver(ReceiverConfig config);
    ~Receiver();
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;

    /// Set before Start. Called on the receiver's threads, one call at a time, before the answer goes out; must not call
    /// the receiver. onRefusal gets one printable line for each refused request and each connection without a request.
    void SetCallbacks(PulseCallback onPulse, RefusalCallback onRefusal);

    /// Starts serving; may follow a Stop. Throws ReceiverError.
    void Start();

    /// Closes every connection, in whatever state, and returns soon. Does nothing when stopped.
    void Stop();

    /// The port of the latest Start.
    std::uint16_t Port() const { return m_port; }

    /// Applies to every later POST to /1.
    void SetBehaviour(const Behaviour& behaviour);

    /// Adds a pulse from an earlier run of the receiver.
    void AddPulse(DatedPulse pulse);

    /// The well-formed pulses, in order.
    std::vector<DatedPulse> Pulses() const;

    /// Every request, refused ones included, in order. If one cannot be parsed as HTTP, only its refusal is meaningful.
    std::vector<ReceivedRequest> Requests() const;

    /// Discards the pulses and requests received so far.
    void Forget();

    /// Connections served since construction, including those without a request.
    std::size_t ConnectionCount() const { return m_connectionCount; }

private:
    void SetUpServer();
    void Serve(const std::function<void()>& connection);
    void Answer(const httplib::Request& request, httplib::Response& response, const httplib::ContentReader& read);
    void AnswerPage(const httplib::Request& request, httplib::Response& response);
    void Refuse(const httplib::Request& request, httplib::Response& response);
    std::string JudgePulse(const std::string& body);
    void OnRequest(ReceivedRequest request);
    void ReportRefusal(const std::string& line);

    const ReceiverConfig m_config;
    std::unique_ptr<httplib::SSLServer> m_server;
    std::future<void> m_serving; ///< there until stopped
    std::atomic<std::uint16_t> m_port = 0;
    std::atomic<std::size_t> m_connectionCount = 0;
    std::mutex m_callbackMutex; ///< guards the callbacks, and lets one run at a time
    PulseCallback m_onPulse;
    RefusalCallback m_onRefusal;
    mutable std::mutex m_mutex; ///< guards what follows
    Behaviour m_behaviour;
    std::deque<DatedPulse> m_pulses;
    std::deque<ReceivedRequest> m_requests;
};

} // namespace vantor::receiver
