#include "health/collectors.h"

#include "support/log_capture.h"
#include "support/scratch_registry.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

TEST(Collectors, TheRecordFollowsTheOptions)
{
    ScratchRegistry registry;
    const struct {
        RunConfig config;
        Mode mode;
        std::uint16_t datMajor, datMinor;
        std::uint64_t bits;
    } kCases[] = {
        {{.hcmode = "periodic", .datver = "1234.5"}, Mode::periodic, 1234, 5, 1 << 16},
        {{.hcmode = "periodic"}, Mode::periodic, 0, 0, 1 << 16},
        {{.datUpdateStatus = -1, .hcmode = "postdatupdate"}, Mode::postUpdate, 0xFFFF, 0xFFFF, 0},
        {{.hcmode = "postdatupdate", .datver = "1.2.3"}, Mode::postUpdate, 0xFFFF, 0xFFFF, 1 << 16},
        {{.hcmode = "Periodic", .server = "s", .username = "u"}, Mode::none, 0xFFFF, 0xFFFF, 0x10005},
        {{.hcmode = "periodic", .domain = "d", .target = "t"}, Mode::periodic, 0, 0, 0x10050},
        {{.hcmode = "periodic", .port = 1, .password = "p", .principal = "p"}, Mode::periodic, 0, 0, 0x1002A},
    };
    for (const auto& [config, mode, datMajor, datMinor, bits] : kCases) {
        const HealthRecord record = DecodeReport(GetOSInfo(config)).record;
        EXPECT_EQ(record.mode, mode);
        EXPECT_EQ(record.dat_major, datMajor);
        EXPECT_EQ(record.dat_minor, datMinor);
        EXPECT_EQ(record.bitfield_test_results.Word(), bits);
    }
    const LogCapture log;
    const ReportBytes report = GetPreUpdateInfo({.hcmode = "predatupdate"});
    EXPECT_EQ(DecodeReport(report).record.dat_major, 0xFFFF);
    std::string block = "TRACE: buffer: { ";
    for (std::size_t index = HealthRecord::kWireSize + 2; index < report.size(); ++index) {
        block += {' ', static_cast<char>(report[index])};
    }
    EXPECT_TRUE(log.Has(block + '}'));

    registry.Set(L"SOFTWARE\\Vexora\\AVSolution\\VXSHIELDGLOBAL\\GLOBAL", L"vriuseipv6", DWORD{1});
    EXPECT_TRUE(DecodeReport(GetOSInfo({})).record.bitfield_test_results.Test(ResultBit::ipv6));
}

} // namespace
} // namespace vantor
