// The fleet's report for people, for programs and for a browser.
#pragma once

#include "inspect/fleet/fleet_report.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vantor::fleet {

/// Lines for a terminal, each with its end, in ASCII.
std::string ReportText(const FleetReport& report);

/// One line without its end, in ASCII.
std::string ReportJson(const FleetReport& report);

/// A whole HTML document that needs no script and nothing from elsewhere, in ASCII.
std::string ReportPage(const FleetReport& report);

/// Whether the group's values are days, of which the latest are shown where there is no room for all.
bool IsOfDays(const Group& group);

/// What became of the lines and pulses that are not in the counts.
struct LeftOut {
    const char* key; ///< in JSON
    const char* text;
    std::uint64_t count = 0;
    std::string first; ///< the first case, where it is kept
};
std::vector<LeftOut> LeftOutOf(const FleetReport& report);

} // namespace vantor::fleet
