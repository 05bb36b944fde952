// The program's task in Windows' Task Scheduler. COM must be initialised on the thread.
#pragma once

#include "run/config/run_config.h"

#include <string>

namespace vantor {

/// Registers the next run of the periodic series under this path of the Task Scheduler, replacing the one that is
/// registered there; one that belongs neither to SYSTEM nor to Administrators is deleted first. It runs the program as
/// SYSTEM; config decides when and with which arguments, the flag who its author is. Warns of what the next run will
/// miss. If a step fails, it is logged with its result code, and nothing is registered.
void CreateTask(const RunConfig& config, bool isConsumerProduct, const std::wstring& path,
                const std::wstring& description);

/// Deletes the task at this path and, when no other task is left in it, its folder. Failures are logged; a missing
/// task is one of them, and harmless.
void DeleteTask(const std::wstring& path);

} // namespace vantor
