// The program's task in Windows' Task Scheduler. COM has to be initialised for the thread.
#pragma once

#include "run/config/run_config.h"

#include <string>

namespace vantor {

/// Registers the next run of the periodic series under this path of the Task Scheduler, in the place of the one that is
/// registered there; one that belongs neither to SYSTEM nor to Administrators is deleted first. It runs the program as
/// SYSTEM; config decides when, and with which arguments, the flag the author. What the next run will miss is warned of.
/// A step that fails is logged with its result code; nothing is registered then.
void CreateTask(const RunConfig& config, bool isConsumerProduct, const std::wstring& path,
                const std::wstring& description);

/// Deletes the task at this path and, when no other task is left in it, its folder. What fails is logged; a task that
/// is not there is such a failure, and harmless.
void DeleteTask(const std::wstring& path);

} // namespace vantor
