// Decodes the body of a POST to a pulse, or says why it is not one.
#pragma once

#include "health/record/report.h"

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <string>
#include <string_view>

namespace vantor::inspect {

/// A well-formed pulse. Depending on its source, only the report may be known.
struct Pulse { // NOLINT(bugprone-exception-escape): the JSON type's moves look as if they could throw
    nlohmann::ordered_json client; ///< the "ci" members, in their order: strings, "pev" a number, "rid" a signed
                                   ///< 64-bit integer, "ro" true; "xpoid" and "ro" may be missing
    Report report;                 ///< decoded from "rpt"
    std::string reportBase64;      ///< unchanged; empty if only the record is known
};

/// what() says, in printable text, what is wrong with a body.
class PulseError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Decodes a body: a JSON object with the members "ci" and "rpt", whose members must be in order, of the right type and
/// not repeated, with the report in strict Base64. Throws PulseError for anything else. The result depends only on the
/// bytes.
Pulse DecodePulse(std::string_view body);

/// Decodes a report alone, in strict Base64. Throws PulseError.
Pulse DecodeReportText(std::string_view base64);

} // namespace vantor::inspect
