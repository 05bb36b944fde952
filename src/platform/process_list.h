// The running processes.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace vantor {

struct ProcessEntry {
    DWORD id = 0;
    DWORD parentId = 0;
    std::string name; ///< image name, lower-cased
};

/// A snapshot of the processes. Where Windows refused it, or its walk, it holds what was found until then.
struct ProcessList {
    std::vector<ProcessEntry> entries;
    const char* failedCall = nullptr; ///< name of the Toolhelp function that failed; null: none
    DWORD error = ERROR_SUCCESS;      ///< with which it failed
};

/// One snapshot of all processes (CreateToolhelp32Snapshot, Process32FirstW, Process32NextW).
ProcessList ListProcesses();

/// The image name of a process's parent, lower-cased; nothing when the parent is not in the list.
std::optional<std::string> ParentName(const std::vector<ProcessEntry>& processes, DWORD processId);

} // namespace vantor
