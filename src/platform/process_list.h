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

/// One snapshot of all processes (CreateToolhelp32Snapshot). When Windows refuses it, the list is empty and the last
/// error says why.
std::vector<ProcessEntry> ListProcesses();

/// The image name of a process's parent, lower-cased; nothing when the parent is not in the list.
std::optional<std::string> ParentName(const std::vector<ProcessEntry>& processes, DWORD processId);

} // namespace vantor
