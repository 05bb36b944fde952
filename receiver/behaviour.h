// How the receiver answers a POST to /1, when it is to misbehave on purpose.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vantor::receiver {

/// When the receiver cuts the connection, without an end of TLS.
enum class CutPoint {
    never,
    beforeAnswer, ///< after the whole request was read
    afterHeaders, ///< of the answer
    inBody,       ///< after half of the answer's body
};

/// The defaults are good behaviour: 200 for a well-formed pulse, 400 for another, at once, with a short body.
struct Behaviour {
    std::optional<int> status;                   ///< instead of 200 or 400
    std::chrono::milliseconds delay{0};          ///< before anything of the answer
    std::optional<std::size_t> bodyBytes;        ///< a body of so many bytes 'x' instead of the usual one
    std::string body;                            ///< these bytes instead of the usual body, when there are any
    bool chunked = false;                        ///< chunks instead of a Content-Length
    bool unframed = false;                       ///< neither: the end of the connection ends the body
    bool endless = false;                        ///< the body comes again and again until the client leaves
    std::chrono::milliseconds pieceDelay{0};     ///< before each byte of the body, when it is not 0
    std::optional<std::size_t> stallAfter;       ///< so many bytes of the body, then a pause
    std::chrono::milliseconds stallFor{600'000}; ///< length of that pause; it outlasts every client
    CutPoint cut = CutPoint::never;
    std::string bytesBeforeCut; ///< sent as they are, such as half a status line, and then a cut: all of the answer
    std::vector<std::pair<std::string, std::string>> headers; ///< more headers, such as Location
    /// The part of a proxy that wants to know who asks: while there is one, a request without a Proxy-Authorization is
    /// answered 407 with these Proxy-Authenticate lines, such as "NTLM" or "Basic realm=\"x\"", and brings no pulse.
    std::vector<std::string> challenges;
    std::string authorization; ///< the only Proxy-Authorization that will do, such as "Basic dTpw"; empty: any
};

} // namespace vantor::receiver
