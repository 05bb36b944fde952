// A pulse as one flat line, for a database.
#pragma once

#include "inspect/fleet/fleet_pulse.h"

#include <cstdint>
#include <string>

namespace vantor::fleet {

/// The names of the columns, with the line's end: "received", "place", the client's members, the record's fields, the
/// result bits as "bit_server" and so on, "items".
std::string CsvHeading();

/// Appends the pulse's line. `place` counts the lines, which keeps pulses of one second in order. Texts are in quotes, and
/// line ends, quotes and whatever is no printable ASCII stand in them as in PrintableText, so that every pulse is one line;
/// text items are joined by "; ".
void AppendCsvLine(const FleetPulse& pulse, std::uint64_t place, std::string& text);

} // namespace vantor::fleet
