// The program's task in the Task Scheduler. COM must be initialised on the thread.
#pragma once

#include "run/config/run_config.h"

#include <string>

namespace vantor {

/// Registers the next run of the periodic series at this path of the Task Scheduler, replacing an existing task; one
/// that neither SYSTEM nor Administrators own is deleted first. The task runs the program as SYSTEM; config decides
/// when and with which arguments, and the flag decides the author. Warns about options that the next run will not get.
/// If a step fails, logs it with its result code and registers nothing.
void CreateTask(const RunConfig& config, bool isConsumerProduct, const std::wstring& path,
                const std::wstring& description);

/// Deletes the task at this path and its folder, if that is empty afterwards. Failures are logged, including the
/// harmless one that the task does not exist.
void DeleteTask(const std::wstring& path);

} // namespace vantor
