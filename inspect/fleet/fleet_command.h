// vantor-inspect --fleet.
#pragma once

#include "inspect/fleet/fleet.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace vantor::fleet {

struct FleetOptions {
    enum class Output { text, json, csv };

    Output output = Output::text;
    std::string page;               ///< a file to write the page to; empty: none
    std::vector<std::string> files; ///< "-" is the input
    FleetLimits limits;
};

/// Reads the files and writes what they say of the fleet. Complaints go to `errors`. Returns the exit code: 0, or 1 when a
/// file cannot be read or written, or when something in one is malformed or left out.
int RunFleet(const FleetOptions& options, std::istream& input, std::ostream& output, std::ostream& errors);

} // namespace vantor::fleet
