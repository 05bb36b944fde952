#include "health/probes/process_probe.h"

#include "support/log_capture.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantor {
namespace {

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

TEST(ProcessProbe, OfSeveralProcessesWithOneNameTheLastCountsAndOneThatIsGoneIsWarnedAbout)
{
    const std::vector<char> memory(25 * 1024 * 1024, 'x');
    const std::uint32_t own = GetProcessMem(::GetCurrentProcessId());
    EXPECT_GT(own, memory.size());
    HealthRecord record;
    LogCapture log;
    GetProcessInfo(record, {{"vxshield.exe", 0xFFFFFFFC}, {"vxshield.exe", ::GetCurrentProcessId()}});
    EXPECT_EQ(record.bitfield_test_results.Word(), 1u << 12);
    EXPECT_GE(record.vxshield_mem_10mb, 2);
    EXPECT_LE(record.vxshield_mem_10mb, own / 10'485'760 + 1);
    EXPECT_TRUE(log.Has(" WARN: GetProcessMem OpenProcess failed on PID:4294967292 Error:87"));
}

} // namespace
} // namespace vantor
