// vantor-inspect without its process: options, input and output.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace vantor::inspect {

/// Runs with the arguments behind the program's name. A file is read where an argument names one, `input` otherwise.
/// Results go to `output`, complaints to `errors`. Returns the exit code: 0, 1 when something is malformed or cannot be
/// read, 2 when the options are wrong.
int RunInspect(const std::vector<std::string>& arguments, std::istream& input, std::ostream& output,
               std::ostream& errors);

} // namespace vantor::inspect
