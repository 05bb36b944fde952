// Compares two pulses.
#pragma once

#include "inspect/pulse_text.h"

#include <string>
#include <string_view>
#include <vector>

namespace vantor::inspect {

/// A client member, field or bit with its old and new value; a missing member has the value "-".
struct Change {
    std::string name;
    std::string before;
    std::string after;
};

struct PulseDifference {
    std::vector<Change> client; ///< without the request id, which always differs
    std::vector<Change> record; ///< fields; the word of bits only if bits without a name differ
    std::vector<Change> bits;   ///< "0" and "1"
    std::vector<std::string> itemsGone;
    std::vector<std::string> itemsNew;

    bool IsEmpty() const;
};

/// Compares text items only if both pulses have the same mode.
PulseDifference Compare(const Pulse& before, const Pulse& after);

/// A block of lines for people, each with its line end; safe to show on a terminal.
std::string DifferenceBlock(const PulseDifference& difference);

/// "client", "record" and "bits" map names to [before, after]; "items" has "gone" and "new".
nlohmann::ordered_json DifferenceJson(const PulseDifference& difference);

} // namespace vantor::inspect
