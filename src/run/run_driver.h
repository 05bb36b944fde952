// One run of the program, from the command line to the exit code.
#pragma once

namespace vantor {

/// Runs every stage whose condition the options meet, in the program's fixed order. Returns the exit code: 0, or 1
/// when the command line is invalid. Failures of single stages are logged and leave it at 0. A command line that asks for
/// help gets it on standard output, and nothing else is done.
int RunPulse(int argc, const char* const* argv);

} // namespace vantor
