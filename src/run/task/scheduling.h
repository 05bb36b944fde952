// The stage that maintains the program's periodic task.
#pragma once

#include "run/config/run_config.h"

namespace vantor {

/// Deletes the tasks of earlier product names and of the other brand, then registers the next run of the periodic
/// series, or deletes the task if the options do not ask for one. Failures of Windows calls are logged. Throws
/// OptionError for a run count outside the series.
void DoScheduling(const RunConfig& config);

} // namespace vantor
