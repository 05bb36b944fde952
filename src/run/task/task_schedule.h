// When the periodic task runs next and with which arguments. Each run of the series registers the following one.
#pragma once

#include "platform/text/formatting.h"
#include "run/config/run_config.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace vantor {

/// Whether a run with these options registers the task's next run; if not, it deletes the task. Throws OptionError for
/// a run count outside the series (eight runs, three with /test).
bool RegistersNextRun(const RunConfig& config);

/// The run that a run with these options registers.
struct NextRun {
    std::chrono::seconds delay;        ///< from now
    std::optional<std::uint8_t> count; ///< its /periodicruncount; empty if the series is over and it gets /continue
};

/// Decides by the run count or /continue. Requires that RegistersNextRun is true for the options.
NextRun NextRunAfter(const RunConfig& config);

/// The task's arguments: the mode and the options that the next run needs, including the proxy's password in clear
/// text. Begins with a blank.
std::string TaskArguments(const RunConfig& config, std::optional<std::uint8_t> nextCount);

/// The period in which the task's trigger is active, in local time, such as "2026-03-07T23:00:00".
struct TaskWindow {
    std::string start;
    std::string end;
};

/// Converts a time to the machine's time zone.
using LocalTime = DateTime (*)(std::chrono::sys_seconds time);

/// The window that opens after the delay and stays open for 72 hours, even if the clocks change meanwhile.
TaskWindow WindowAfter(std::chrono::sys_seconds now, std::chrono::seconds delay, LocalTime localTime);

} // namespace vantor
