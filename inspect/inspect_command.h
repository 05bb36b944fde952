// The command vantor-inspect, with its input and output as parameters.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace vantor::inspect {

/// Runs the command with the arguments after the program's name. Reads the files that they name, or `input` if there
/// are none. Writes results to `output` and errors to `errors`. Returns the exit code: 0, 1 if something is malformed
/// or cannot be read, 2 if the options are wrong.
int RunInspect(const std::vector<std::string>& arguments, std::istream& input, std::ostream& output,
               std::ostream& errors);

} // namespace vantor::inspect
