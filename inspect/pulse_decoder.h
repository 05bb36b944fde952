// From the body of a POST to the pulse that it carries, or to the reason why it carries none.
#pragma once

#include "health/record/report.h"

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <string>
#include <string_view>

namespace vantor::inspect {

/// A well-formed pulse; what it was read from may lack all but the report.
struct Pulse { // NOLINT(bugprone-exception-escape): the JSON type's moves look as if they could throw
    nlohmann::ordered_json client; ///< the "ci" members, in their order: strings, "pev" a number, "rid" a signed
                                   ///< 64-bit integer, "ro" true; "xpoid" and "ro" may be missing
    Report report;                 ///< decoded from "rpt"
    std::string reportBase64;      ///< as it came; empty when only the record is known
};

/// what() says what is wrong with a body, in printable text.
class PulseError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Decodes a body: one JSON object of the members "ci" and "rpt", each member of both in its place, of its type and
/// there once, the report in strict Base64. Throws PulseError for anything else; depends on nothing but the bytes.
Pulse DecodePulse(std::string_view body);

/// Decodes a report alone, in strict Base64. Throws PulseError.
Pulse DecodeReportText(std::string_view base64);

} // namespace vantor::inspect
