// Where a run's options come from: the side file, the registry, then the command line.
#pragma once

#include "run/config/run_config.h"

namespace vantor {

/// Fills config anew and validates it. The log path may come from the text file beside the program that bears its
/// name with ".txt" ("/logfile=" lines), from the registry value szVanTORLog, or from /logfile, the later over the
/// earlier. argv holds narrow strings, the program's path first.
/// Throws OptionError for an invalid command line. A registry value of 520 bytes or more ends the process.
void GetConfig(RunConfig& config, int argc, const char* const* argv);

} // namespace vantor
