#include "inspect/fleet/pulse_line.h"

#include "inspect/shallow_json.h"

namespace vantor::fleet {
namespace {

using inspect::PulseError;
using nlohmann::ordered_json;

/// Of a text that is no JSON, counted from 1.
std::size_t FirstWrongByte(std::string_view line)
{
    try {
        [[maybe_unused]] const ordered_json json = ordered_json::parse(line.begin(), line.end());
    } catch (const ordered_json::parse_error& error) {
        return error.byte;
    }
    return 0;
}

/// The line with its report where a receiver's line has it.
ordered_json ParseLine(std::string_view line)
{
    if (!line.starts_with('{')) {
        throw PulseError(R"(the line does not begin with "{")");
    }
    ordered_json json = inspect::ParseShallow(line);
    if (json.is_discarded()) {
        throw PulseError("not valid JSON at byte " + std::to_string(FirstWrongByte(line)));
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
