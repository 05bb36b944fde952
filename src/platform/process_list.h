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

/// A snapshot of the processes. When a call fails, it holds the entries found so far.
struct ProcessList {
    std::vector<ProcessEntry> entries;
    const char* failedCall = nullptr; ///< name of the Toolhelp function that failed; null: none
    DWORD error = ERROR_SUCCESS;      ///< its error code
};

/// Takes a snapshot of all processes (CreateToolhelp32Snapshot, Process32FirstW, Process32NextW).
ProcessList ListProcesses();

/// The image name of a process's parent, lower-cased; std::nullopt if the parent is not in the list.
std::optional<std::string> ParentName(const std::vector<ProcessEntry>& processes, DWORD processId);

} // namespace vantor
