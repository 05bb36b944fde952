// The stage that keeps the program's periodic task in the right state.
#pragma once

#include "run/config/run_config.h"

namespace vantor {

/// Deletes the tasks of earlier product names and of the other brand, then registers the next run of the periodic
/// series, or deletes the task if the options do not belong to it. Windows' failures are logged. Throws OptionError
/// for a run count that the series does not have.
void DoScheduling(const RunConfig& config);

} // namespace vantor
