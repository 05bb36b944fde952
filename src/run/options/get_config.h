// Where a run's options come from: the side file, the registry, then the command line.
#pragma once

#include "run/config/run_config.h"

namespace vantor {

/// Resets config, fills it and validates it. The log path may come from the text file beside the program with its name
/// and ".txt" ("/logfile=" lines), from the registry value szVanTORLog, or from /logfile; a later one of these overrides
/// an earlier one. argv holds narrow strings, the program's path first.
/// Throws OptionError for an invalid command line. A registry value of 520 bytes or more ends the process.
void GetConfig(RunConfig& config, int argc, const char* const* argv);

} // namespace vantor
