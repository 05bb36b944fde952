// The wait that lets an update settle before its health check.
#pragma once

#include "run/config/run_config.h"
#include "run/log/logger.h"

#include <chrono>
#include <functional>

namespace vantor {

/// Waits config.delayPostDat minutes, once, through sleep. A delay above 10 minutes is skipped with a warning.
void DelayAfterUpdate(const RunConfig& config, ILogger& log,
                      const std::function<void(std::chrono::milliseconds)>& sleep);

} // namespace vantor
