#include "health/probes/process_probe.h"

#include "platform/owner.h"
#include "platform/process_list.h"
#include "run/log/logging.h"

#include <psapi.h>

namespace vantor {
namespace {

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

ProcessMap MapProcesses()
{
    ProcessMap processes;
    const ProcessList list = ListProcesses();
    for (const ProcessEntry& entry : list.entries) {
        processes.emplace(entry.name, entry.id);
    }
    if (processes.empty()) {
        LogWarning("The processes cannot be listed. Error:" + std::to_string(list.error));
    }
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

void GetProcessInfo(HealthRecord& record, const ProcessMap& processes)
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
    for (const auto& [name, id] : processes) { // of several processes with the same name, the last one counts
        if (name == "vxshield.exe") {
            record.vxshield_mem_10mb = InTenMebibytes(GetProcessMem(id));
        } else if (name == "vxeatp.exe") {
            record.vxeatp_mem_10mb = InTenMebibytes(GetProcessMem(id));
        }
    }
}

} // namespace vantor
