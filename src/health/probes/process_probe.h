// Which programs of interest are running, and how much memory the product's own processes use.
#pragma once

#include "health/record/health_record.h"

#include <windows.h>

#include <map>
#include <string>

namespace vantor {

/// Process ids by lower-case image name.
using ProcessMap = std::multimap<std::string, DWORD>;

/// Takes one snapshot of the processes; empty, with a warning, on failure.
ProcessMap MapProcesses();

/// The low 32 bits of a process's working set in bytes (GetProcessMemoryInfo); 0, with a warning, if it cannot be read.
std::uint32_t GetProcessMem(DWORD processId);

/// Sets bits 7 to 15 and 27 and the two memory readings. Only the processes whose memory is reported are opened.
void GetProcessInfo(HealthRecord& record, const ProcessMap& processes);

} // namespace vantor
