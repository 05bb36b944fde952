// Writes a pulse as a block of text for people or as a line of JSON.
#pragma once

#include "inspect/pulse_decoder.h"

#include <chrono>
#include <optional>
#include <string>

namespace vantor::inspect {

/// A pulse and the time when it was received, if known.
struct DatedPulse { // NOLINT(bugprone-exception-escape): the JSON type's moves look as if they could throw
    std::optional<std::chrono::sys_seconds> received;
    Pulse pulse;
};

/// One line with its line end: when the pulse was received, and its mode.
std::string PulseTitle(const DatedPulse& pulse);

/// A block of lines, each with its line end: the title, client identification, each field of the record with its value
/// and meaning, the result bits that are set, text items. Safe to show on a terminal, whatever the pulse contains.
std::string PulseBlock(const DatedPulse& pulse);

/// The pulse as JSON: "received" (UTC), "ci", "record" (every field by its key), "bits" (name to boolean), "items",
/// "report" (Base64). Unknown parts are left out.
nlohmann::ordered_json PulseJson(const DatedPulse& pulse);

/// One line in ASCII, without a line end. Bytes that are not UTF-8 become U+FFFD.
std::string JsonLine(const nlohmann::ordered_json& json);

/// Reads such a line. Fields and bits are decoded from "report". Throws PulseError.
DatedPulse PulseFromJson(const nlohmann::ordered_json& line);

} // namespace vantor::inspect
