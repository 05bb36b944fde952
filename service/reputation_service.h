// The local reputation service: an HTTPS server on this machine that receives pulses.
#pragma once

#include "service/behaviour.h"
#include "service/pulse_decoder.h"
#include "service/received_request.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace vantor::service {

struct ServiceConfig {
    std::string certificateFile; ///< PEM, the server's certificate first
    std::string keyFile;         ///< PEM
    std::uint16_t port = 0;      ///< 0: any that is free
};

struct ReceivedPulse {
    std::chrono::system_clock::time_point received;
    Pulse pulse;
};

/// what() says why the service cannot start.
class ServiceError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Answers on https://localhost: POST /1 with 200 for a well-formed pulse and 400 with the reason for another; another
/// verb there with 405, another path with 404, a body without a length with 411 and one over 64 KiB with 413. Every
/// operation but Start, Stop and SetCallbacks may be called from any thread at any time.
class ReputationService {
public:
    /// Of pulses and of requests so many are kept, the latest.
    static constexpr std::size_t kMostKept = 1000;

    using PulseCallback = std::function<void(const ReceivedPulse&)>;
    using RefusalCallback = std::function<void(const std::string& line)>;

    explicit ReputationService(ServiceConfig config);
    ~ReputationService();
    ReputationService(const ReputationService&) = delete;
    ReputationService& operator=(const ReputationService&) = delete;

    /// Set before Start. Called on the service's threads, one call at a time, before the answer goes out; must not call
    /// the service. onRefusal gets one printable line for each refused request and each failed TLS handshake.
    void SetCallbacks(PulseCallback onPulse, RefusalCallback onRefusal);

    /// Serves from here on; may follow a Stop. Throws ServiceError.
    void Start();

    /// Closes every connection, in whatever state, and returns soon. Does nothing when stopped.
    void Stop();

    /// The port of the latest Start.
    std::uint16_t Port() const;

    /// Holds for every POST to /1 from here on.
    void SetBehaviour(const Behaviour& behaviour);

    /// The well-formed pulses, in order.
    std::vector<ReceivedPulse> Pulses() const;

    /// Every request, refused ones included, in order. Of what cannot be read as HTTP only the refusal counts.
    std::vector<ReceivedRequest> Requests() const;

    /// Drops the pulses and requests received so far.
    void Forget();

    /// Connections accepted since construction, those without a request included.
    std::size_t ConnectionCount() const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vantor::service
