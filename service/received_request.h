// A request as it came.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace vantor::service {

struct ReceivedRequest {
    std::string method;
    std::string target; ///< as the request line has it
    std::string head;   ///< request line and headers, byte for byte, with the empty line
    std::vector<std::pair<std::string, std::string>> headers; ///< in order; blanks around the values are gone
    std::string body;    ///< byte for byte; empty when it was not read: another path or verb, or too large
    std::string refusal; ///< why it was refused; empty for a well-formed pulse
};

} // namespace vantor::service
