// A pulse as text: a block for people, a line for machines.
#pragma once

#include "inspect/pulse_decoder.h"

#include <chrono>
#include <optional>
#include <string>

namespace vantor::inspect {

/// A pulse, and when it came, if that is known.
struct DatedPulse {
    std::optional<std::chrono::sys_seconds> received;
    Pulse pulse;
};

/// One line with its line end: when the pulse came, and its mode.
std::string PulseTitle(const DatedPulse& pulse);

/// A block of lines, each with its line end: the title, client identification, each field of the record with its value
/// and meaning, the result bits that are set, text items. Safe to show on a terminal whatever the pulse carries.
std::string PulseBlock(const DatedPulse& pulse);

/// The pulse as JSON: "received" (UTC), "ci", "record" (every field by its key), "bits" (name to boolean), "items",
/// "report" (Base64). What is not known is left out.
nlohmann::ordered_json PulseJson(const DatedPulse& pulse);

/// One line without a line end, in ASCII. What is not UTF-8 becomes U+FFFD.
std::string JsonLine(const nlohmann::ordered_json& json);

/// The pulse of such a line, its fields and bits read from the report anew. Throws PulseError.
DatedPulse PulseFromJson(const nlohmann::ordered_json& line);

} // namespace vantor::inspect
