// From a line of the receiver to a pulse.
#pragma once

#include "inspect/fleet/fleet_pulse.h"

#include <cstddef>
#include <memory>
#include <string_view>

namespace vantor::fleet {

/// How many readable bytes, of whatever value, must follow a line that PulseLineReader is given.
inline constexpr std::size_t kLinePadding = 64;

/// Reads lines as vantor-receiver writes them, and bodies with a member "received" beside "ci" and "rpt". What either says
/// beside time, client and report is passed over.
class PulseLineReader {
public:
    PulseLineReader();
    ~PulseLineReader();
    PulseLineReader(const PulseLineReader&) = delete;
    PulseLineReader& operator=(const PulseLineReader&) = delete;

    /// Throws inspect::PulseError, whose text says what is wrong with the line.
    void Read(std::string_view line, FleetPulse& pulse);

private:
    class Fast; ///< there only where the build found simdjson

    const std::unique_ptr<Fast> m_fast;
};

/// The same with the JSON reader of vantor-inspect: about twenty times slower, and the judge of every line that the faster
/// reader does not take. Needs no padding.
void ReadPulseLine(std::string_view line, FleetPulse& pulse);

} // namespace vantor::fleet
