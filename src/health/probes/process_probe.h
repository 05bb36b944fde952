// Which programs of interest are running, and how much memory those of the product use.
#pragma once

#include "health/record/health_record.h"

#include <windows.h>

#include <map>
#include <string>

namespace vantor {

/// Identifiers of the running processes by image name, lower-cased.
using ProcessMap = std::multimap<std::string, DWORD>;

/// Takes one snapshot; empty, with a warning, when Windows refuses it.
ProcessMap MapProcesses();

/// The working set of a process in bytes, its low 32 bits (GetProcessMemoryInfo); 0, with a warning, when it cannot
/// be read.
std::uint32_t GetProcessMem(DWORD processId);

/// Sets bits 7 to 15 and 27 and the two memory readings. Only the processes whose memory is reported are opened.
void GetProcessInfo(HealthRecord& record, const ProcessMap& processes);

} // namespace vantor
