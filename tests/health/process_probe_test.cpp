#include "health/process_probe.h"

#include "log_capture.h"
#include "platform/owner.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

/// A running copy of the stand-in program under another name, ended with the object.
class StandIn {
public:
    StandIn(const std::string& name, int mebibytes) : m_path(Folder() + name)
    {
        EXPECT_TRUE(::CopyFileA((Folder() + "process_stand_in.exe").c_str(), m_path.c_str(), FALSE));
        SECURITY_ATTRIBUTES inheritable{sizeof(inheritable), nullptr, TRUE};
        KernelHandle read, write;
        EXPECT_TRUE(::CreatePipe(read.Receive(), write.Receive(), &inheritable, 0));
        STARTUPINFOA start{};
        start.cb = sizeof(start);
        start.dwFlags = STARTF_USESTDHANDLES;
        start.hStdOutput = write.Get();
        PROCESS_INFORMATION process{};
        std::string command = "\"" + m_path + "\" " + std::to_string(mebibytes);
        EXPECT_TRUE(::CreateProcessA(m_path.c_str(), command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                     &start, &process));
        m_process = KernelHandle(process.hProcess);
        m_id = process.dwProcessId;
        ::CloseHandle(process.hThread);
        write.Reset();
        char ready = 0;
        DWORD size = 0;
        EXPECT_TRUE(::ReadFile(read.Get(), &ready, 1, &size, nullptr)); // it has its memory now
    }
    ~StandIn()
    {
        ::TerminateProcess(m_process.Get(), 0);
        ::WaitForSingleObject(m_process.Get(), 10'000);
        ::DeleteFileA(m_path.c_str());
    }
    StandIn(const StandIn&) = delete;
    StandIn& operator=(const StandIn&) = delete;

    DWORD Id() const { return m_id; }

private:
    static std::string Folder()
    {
        char path[MAX_PATH];
        ::GetModuleFileNameA(nullptr, path, MAX_PATH);
        const std::string program = path;
        return program.substr(0, program.rfind('\\') + 1);
    }

    std::string m_path;
    KernelHandle m_process;
    DWORD m_id = 0;
};

TEST(ProcessProbe, EachProgramHasItsBit)
{
    const std::pair<const char*, std::uint64_t> kCases[] = {
        {"winword.exe", 1 << 7}, {"excel.exe", 1 << 8},   {"outlook.exe", 1 << 9}, {"chrome.exe", 1 << 10},
        {"msedge.exe", 1 << 11}, {"vxemms.exe", 1 << 13}, {"vxtray.exe", 1 << 14}, {"vxevtps.exe", 1 << 15},
        {"teams.exe", 1 << 27},  {"Teams.exe", 0},        {"notepad.exe", 0},
    };
    for (const auto& [name, bits] : kCases) {
        HealthRecord record;
        LogCapture log;
        GetProcessInfo(record, {{name, 0xFFFFFFFF}});
        EXPECT_EQ(record.bitfield_test_results.Word(), bits) << name;
        EXPECT_EQ(log.Lines().size(), 2u); // none of these was opened
    }
}

TEST(ProcessProbe, AProcessThatIsGoneIsWarnedAbout)
{
    HealthRecord record;
    LogCapture log;
    GetProcessInfo(record, {{"vxshield.exe", 0xFFFFFFFC}});
    EXPECT_EQ(record.bitfield_test_results.Word(), 1u << 12);
    EXPECT_EQ(record.vxshield_mem_10mb, 0);
    EXPECT_TRUE(log.Has(" WARN: GetProcessMem OpenProcess failed on PID:4294967292 Error:87"));
}

TEST(ProcessProbe, RunningProcessesAreFoundAndMeasured)
{
    const StandIn shield("VxShield.exe", 95);
    const StandIn first("vxeatp.exe", 1);
    const StandIn last("vxeatp.exe.copy", 1); // another name is another program
    const ProcessList processes = ListProcesses();
    EXPECT_EQ(processes.find("vxshield.exe")->second, shield.Id());

    HealthRecord record;
    GetProcessInfo(record, processes);
    EXPECT_TRUE(record.bitfield_test_results.Test(ResultBit::vxshield));
    EXPECT_EQ(record.vxshield_mem_10mb, 10); // 95 MiB and what every process takes
    EXPECT_EQ(record.vxeatp_mem_10mb, GetProcessMem(first.Id()) / 10'485'760);

    HealthRecord twice;
    GetProcessInfo(twice, {{"vxshield.exe", first.Id()}, {"vxshield.exe", shield.Id()}});
    EXPECT_EQ(twice.vxshield_mem_10mb, 10); // of several the last counts
}

} // namespace
} // namespace vantor
