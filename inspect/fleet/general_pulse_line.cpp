// The reader of lines where the build found no simdjson.
#include "inspect/fleet/pulse_line.h"

namespace vantor::fleet {

class PulseLineReader::Fast {};

PulseLineReader::PulseLineReader() = default;
PulseLineReader::~PulseLineReader() = default;

void PulseLineReader::Read(std::string_view line, FleetPulse& pulse)
{
    ReadPulseLine(line, pulse);
}

} // namespace vantor::fleet
