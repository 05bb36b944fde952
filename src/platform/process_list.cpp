#include "platform/process_list.h"

#include "platform/owner.h"
#include "platform/text/encoding.h"
#include "platform/text/lower_case.h"

#include <tlhelp32.h>

#include <algorithm>

namespace vantor {
namespace {

const ProcessEntry* Find(const std::vector<ProcessEntry>& processes, DWORD id)
{
    const auto found =
        std::find_if(processes.begin(), processes.end(), [id](const ProcessEntry& entry) { return entry.id == id; });
    return found == processes.end() ? nullptr : &*found;
}

} // namespace

ProcessList ListProcesses()
{
    const FileHandle snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    if (!snapshot) {
        return {{}, "CreateToolhelp32Snapshot", ::GetLastError()};
    }
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    if (!::Process32FirstW(snapshot.Get(), &entry)) {
        return {{}, "Process32First", ::GetLastError()};
    }
    ProcessList list;
    do {
        list.entries.push_back({entry.th32ProcessID, entry.th32ParentProcessID, LowerCase(ToNarrow(entry.szExeFile))});
    } while (::Process32NextW(snapshot.Get(), &entry));
    if (const DWORD error = ::GetLastError(); error != ERROR_NO_MORE_FILES) {
        list.failedCall = "Process32Next";
        list.error = error;
    }
    return list;
}

std::optional<std::string> ParentName(const std::vector<ProcessEntry>& processes, DWORD processId)
{
    const ProcessEntry* const process = Find(processes, processId);
    const ProcessEntry* const parent = process ? Find(processes, process->parentId) : nullptr;
    return parent ? std::optional(parent->name) : std::nullopt;
}

} // namespace vantor
