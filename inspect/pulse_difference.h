// What changed from one pulse to another.
#pragma once

#include "inspect/pulse_text.h"

#include <string>
#include <string_view>
#include <vector>

namespace vantor::inspect {

/// A client member, a field or a bit with its values; a member that is missing has the value "-".
struct Change {
    std::string name;
    std::string before;
    std::string after;
};

struct PulseDifference {
    std::vector<Change> client; ///< without the request id, which no two pulses share
    std::vector<Change> record; ///< fields; the word of bits only for bits without a name
    std::vector<Change> bits;   ///< "0" and "1"
    std::vector<std::string> itemsGone;
    std::vector<std::string> itemsNew;

    bool IsEmpty() const;
};

/// Text items count only where both pulses have a mode with such items.
PulseDifference Compare(const Pulse& before, const Pulse& after);

/// A block of lines for people, each with its line end; safe to show on a terminal.
std::string DifferenceBlock(const PulseDifference& difference);

/// "client", "record" and "bits" map names to [before, after]; "items" has "gone" and "new".
nlohmann::ordered_json DifferenceJson(const PulseDifference& difference);

} // namespace vantor::inspect
