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
    std::uint16_t port = 0;      ///< 0: any free port
};

struct ReceivedRequest {
    std::string method;
    std::string target; ///< as in the request line
    /// Sorted by name, ignoring case; headers with the same name in order of arrival.
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;    ///< of a POST to /1, unchanged; empty if it was not read or is too large
    std::string refusal; ///< why it was refused; empty for a well-formed pulse
};

using inspect::DatedPulse;

/// what() says why the receiver cannot start.
class ReceiverError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Serves https://localhost over IPv4, with cpp-httplib. POST /1 is answered with 200 for a well-formed pulse and with
/// 400 and the reason for any other body; other methods there with 405, other paths with 404, a body without a length
/// with 411, one over 64 KiB with 413 and a compressed or multipart one with 415. GET / returns a page of the pulses,
/// filtered by the queries "mode", "bit" and "host", and GET /fleet a page of what they say about content updates; such
/// requests are not kept. All functions except Start, Stop and SetCallbacks may be called from any thread at any time.
class Receiver {
public:
    /// How many of the latest pulses, and of the latest requests, are kept.
    static constexpr std::size_t kMaxKept = 1000;

    /// How many connections are served at a time. Others wait until one ends; idle ones end within seconds.
    static constexpr std::size_t kMaxConnections = 128;

    using PulseCallback = std::function<void(const DatedPulse&)>;
    using RefusalCallback = std::function<void(const std::string& line)>;

    explicit Receiver(ReceiverConfig config);
    ~Receiver();
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;

    /// Call this before Start. The callbacks run on the receiver's threads, one at a time, before the answer is sent,
    /// and must not call the receiver. onRefusal gets one printable line for each refused request and for each
    /// connection without a request.
    void SetCallbacks(PulseCallback onPulse, RefusalCallback onRefusal);

    /// Starts serving, also again after Stop. Throws ReceiverError.
    void Start();

    /// Closes all connections, whatever their state, and returns quickly. Does nothing if stopped.
    void Stop();

    /// The port of the latest Start.
    std::uint16_t Port() const { return m_port; }

    /// Applies to every later POST to /1.
    void SetBehaviour(const Behaviour& behaviour);

    /// Adds a pulse from an earlier run of the receiver.
    void AddPulse(DatedPulse pulse);

    /// The well-formed pulses, in order.
    std::vector<DatedPulse> Pulses() const;

    /// All requests, including refused ones, in order. If one cannot be parsed as HTTP, only its refusal is meaningful.
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
    std::future<void> m_serving; ///< valid until stopped
    std::atomic<std::uint16_t> m_port = 0;
    std::atomic<std::size_t> m_connectionCount = 0;
    std::mutex m_callbackMutex; ///< guards the callbacks, and lets one run at a time
    PulseCallback m_onPulse;
    RefusalCallback m_onRefusal;
    mutable std::mutex m_mutex; ///< guards the members below
    Behaviour m_behaviour;
    std::deque<DatedPulse> m_pulses;
    std::deque<ReceivedRequest> m_requests;
};

} // namespace vantor::receiver
