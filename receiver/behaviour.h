// How the receiver answers a POST to /1, including the faults that tests inject.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace vantor::receiver {

// The faults. Cutting the connection means closing it without the closing alert of TLS.

/// Cut after reading the whole request and sending only these bytes, such as half a status line.
struct CutBeforeAnswer {
    std::string bytes;
};

/// Cut after half of the body.
struct CutInBody {};

/// The body is repeated until the client disconnects.
struct EndlessBody {};

/// A pause before each byte of the body.
struct SlowBody {
    std::chrono::milliseconds bytePause{0};
};

/// A pause within the body; the default is longer than any client waits.
struct StalledBody {
    std::size_t afterBytes = 0;
    std::chrono::milliseconds pause{600'000};
};

using Fault = std::variant<std::monostate, CutBeforeAnswer, CutInBody, EndlessBody, SlowBody, StalledBody>;

/// How the client knows where the body ends.
enum class Framing { contentLength, chunked, connectionEnd };

/// The default has no fault: 200 for a well-formed pulse, 400 for any other body, at once, with a short body.
struct Behaviour {
    std::optional<int> status;            ///< instead of 200 or 400
    std::chrono::milliseconds delay{0};   ///< before any of the answer is sent
    std::optional<std::size_t> bodyBytes; ///< if set, a body of this many 'x' instead of the usual one
    std::string body;                     ///< if not empty, the body instead of the usual one
    Framing framing = Framing::contentLength;
    Fault fault;
    std::vector<std::pair<std::string, std::string>> headers; ///< additional headers, such as Location
    /// Acts as a proxy that authenticates its clients, if not empty: a request without Proxy-Authorization is answered
    /// with 407 and these Proxy-Authenticate lines, such as "NTLM" or "Basic realm=\"x\"", and does not count as a
    /// pulse.
    std::vector<std::string> challenges;
    std::string authorization; ///< the only Proxy-Authorization accepted, such as "Basic dTpw"; empty: any
};

} // namespace vantor::receiver
