#include "inspect/fleet/pulse_line.h"

#include "inspect/shallow_json.h"
#include "inspect/utc_time.h"

namespace vantor::fleet {
namespace {

using inspect::PulseError;
using nlohmann::ordered_json;

/// The line with its report where a receiver's line has it.
ordered_json ParseLine(std::string_view line)
{
    ordered_json json = inspect::ParseShallow(line);
    if (!json.is_object()) {
        inspect::DecodePulse(line); // throws, with the exact reason
        throw PulseError("the line is no JSON object");
    }
    if (!json.contains("received")) {
        throw PulseError("it is not known when the pulse was received");
    }
    if (const auto body = json.find("rpt"); body != json.end() && !json.contains("report")) {
        const bool hasReport = body->is_object() && body->contains("vantor");
        json["report"] = hasReport ? (*body)["vantor"] : ordered_json();
    }
    return json;
}

} // namespace

void ReadPulseLine(std::string_view line, FleetPulse& pulse)
{
    Flatten(inspect::PulseFromJson(ParseLine(line)), pulse);
}

} // namespace vantor::fleet
