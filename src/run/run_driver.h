// One run of the program, from the command line to the exit code.
#pragma once

namespace vantor {

/// Runs the stages that the options ask for, in a fixed order. Returns the exit code: 0, or 1 if the command line is
/// invalid. Failures of single stages are logged and do not change it. If the command line asks for help, prints it to
/// standard output and does nothing else.
int RunPulse(int argc, const char* const* argv);

} // namespace vantor
