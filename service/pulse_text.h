// A pulse as text: a block for people, a line for machines.
#pragma once

#include "service/pulse_decoder.h"

#include <chrono>
#include <string>

namespace vantor::service {

/// A block of lines, each with its line end: time, client identification, record fields with their meaning, the result
/// bits that are set, text items. Safe to show on a terminal whatever the pulse carries.
std::string PulseBlock(const Pulse& pulse, std::chrono::system_clock::time_point received);

/// One JSON object without a line end, in ASCII: "received" (UTC), "ci", "record" (every field by its key), "bits"
/// (name to boolean), "items", "report" (Base64). What is not UTF-8 in an item becomes U+FFFD; "report" has the bytes.
std::string PulseJson(const Pulse& pulse, std::chrono::system_clock::time_point received);

} // namespace vantor::service
