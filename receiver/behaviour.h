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

// The faults. To cut the connection is to close it without TLS's closing alert.

/// Cut once the whole request was read; all of the answer are these bytes, such as half a status line.
struct CutBeforeAnswer {
    std::string bytes;
};

struct CutAfterHeaders {};

/// Cut after half of the body.
struct CutInBody {};

/// The body is repeated until the client leaves.
struct EndlessBody {};

/// A pause before each byte of the body.
struct SlowBody {
    std::chrono::milliseconds bytePause{0};
};

/// A pause within the body, by default one that outlasts every client.
struct StalledBody {
    std::size_t afterBytes = 0;
    std::chrono::milliseconds pause{600'000};
};

using Fault =
    std::variant<std::monostate, CutBeforeAnswer, CutAfterHeaders, CutInBody, EndlessBody, SlowBody, StalledBody>;

/// What tells the client where the body ends.
enum class Framing { contentLength, chunked, connectionEnd };

/// By default no fault: 200 for a well-formed pulse, 400 for another, at once, with a short body.
struct Behaviour {
    std::optional<int> status;            ///< instead of 200 or 400
    std::chrono::milliseconds delay{0};   ///< before anything of the answer
    std::optional<std::size_t> bodyBytes; ///< the length of a body of 'x' instead of the usual one
    std::string body;                     ///< unless empty, this body instead of the usual one
    Framing framing = Framing::contentLength;
    Fault fault;
    std::vector<std::pair<std::string, std::string>> headers; ///< more headers, such as Location
    /// As from a proxy that authenticates its clients: unless empty, a request without Proxy-Authorization is answered
    /// with 407 and these Proxy-Authenticate lines, such as "NTLM" or "Basic realm=\"x\"", and is not taken as a pulse.
    std::vector<std::string> challenges;
    std::string authorization; ///< the only Proxy-Authorization accepted, such as "Basic dTpw"; empty: any
};

} // namespace vantor::receiver
