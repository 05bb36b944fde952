#include "health/process_probe.h"

#include "platform/owner.h"
#include "platform/text.h"
#include "run/logging.h"

#include <psapi.h>
#include <tlhelp32.h>

#include <algorithm>

namespace vantor {
namespace {

std::string LowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

void WarnOfMemory(const char* call, DWORD processId, DWORD error)
{
    LogWarning("GetProcessMem " + std::string(call) + " failed on PID:" + std::to_string(processId) +
               " Error:" + std::to_string(error));
}

/// The low 8 bits of the number of whole 10 MiB.
std::uint8_t InTenMebibytes(std::uint32_t bytes)
{
    constexpr std::uint32_t kTenMebibytes = 10'485'760;
    return static_cast<std::uint8_t>(bytes / kTenMebibytes);
}

} // namespace

ProcessList ListProcesses()
{
    ProcessList processes;
    const FileHandle snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    if (!snapshot || !::Process32FirstW(snapshot.Get(), &entry)) {
        LogWarning("The processes cannot be listed. Error:" + std::to_string(::GetLastError()));
        return processes;
    }
    do {
        processes.emplace(LowerCase(ToNarrow(entry.szExeFile)), entry.th32ProcessID);
    } while (::Process32NextW(snapshot.Get(), &entry));
    return processes;
}

std::uint32_t GetProcessMem(DWORD processId)
{
    const KernelHandle process(::OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId));
    if (!process) {
        WarnOfMemory("OpenProcess", processId, ::GetLastError());
        return 0;
    }
    PROCESS_MEMORY_COUNTERS counters{};
    if (!::GetProcessMemoryInfo(process.Get(), &counters, sizeof(counters))) {
        WarnOfMemory("GetProcessMemoryInfo", processId, ::GetLastError());
        return 0;
    }
    return static_cast<std::uint32_t>(counters.WorkingSetSize);
}

void GetProcessInfo(HealthRecord& record, const ProcessList& processes)
{
    static constexpr struct {
        const char* name;
        ResultBit bit;
    } kNames[] = {
        {"winword.exe", ResultBit::word},  {"excel.exe", ResultBit::excel},   {"outlook.exe", ResultBit::outlook},
        {"chrome.exe", ResultBit::chrome}, {"msedge.exe", ResultBit::msedge}, {"vxshield.exe", ResultBit::vxshield},
        {"vxemms.exe", ResultBit::vxemms}, {"vxtray.exe", ResultBit::vxtray}, {"vxevtps.exe", ResultBit::vxevtps},
        {"teams.exe", ResultBit::teams},
    };

    const ScopeTrace scope("GetProcessInfo");
    for (const auto& [name, bit] : kNames) {
        record.bitfield_test_results.Set(bit, processes.contains(name));
    }
    for (const auto& [name, id] : processes) { // of several with one name the last counts
        if (name == "vxshield.exe") {
            record.vxshield_mem_10mb = InTenMebibytes(GetProcessMem(id));
        } else if (name == "vxeatp.exe") {
            record.vxeatp_mem_10mb = InTenMebibytes(GetProcessMem(id));
        }
    }
}

} // namespace vantor
