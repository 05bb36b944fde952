// Reads a run's options from the side file, the registry and the command line.
#pragma once

#include "run/config/run_config.h"

namespace vantor {

/// Resets config, fills it and validates it. The log path may come from the side file ("/logfile=" lines in the text
/// file beside the program, with its name and ".txt"), from the registry value szVanTORLog, or from /logfile; each of
/// these overrides the previous ones. argv holds narrow strings, starting with the program's path. Throws OptionError
/// for an invalid command line. A registry value of 520 bytes or more ends the process.
void GetConfig(RunConfig& config, int argc, const char* const* argv);

} // namespace vantor
