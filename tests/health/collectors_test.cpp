#include "health/collectors.h"

#include "health/host_probes.h"
#include "run/vantor_logging.h"
#include "scratch_registry.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

TEST(Collectors, TheRecordFollowsTheOptions)
{
    ScratchRegistry registry;
    const struct {
        RunConfig config;
        std::uint8_t mode;
        std::uint16_t datMajor, datMinor;
        std::uint64_t bits;
    } kCases[] = {
        {{.hcmode = "periodic", .datver = "1234.5"}, 3, 1234, 5, 1 << 16},
        {{.hcmode = "periodic"}, 3, 0, 0, 1 << 16},
        {{.datUpdateStatus = -1, .hcmode = "postdatupdate"}, 2, 0xFFFF, 0xFFFF, 0},
        {{.hcmode = "postdatupdate", .datver = "1.2.3"}, 2, 0xFFFF, 0xFFFF, 1 << 16},
        {{.hcmode = "Periodic", .server = "s", .username = "u", .domain = "d", .target = "t"},
         0,
         0xFFFF,
         0xFFFF,
         0x10055},
        {{.hcmode = "periodic", .port = 1, .password = "p", .principal = "p"}, 3, 0, 0, 0x1002A},
    };
    for (const auto& [config, mode, datMajor, datMinor, bits] : kCases) {
        const HealthRecord record = DecodeReport(GetOSInfo(config)).record;
        EXPECT_EQ(record.mode, mode);
        EXPECT_EQ(record.dat_major, datMajor);
        EXPECT_EQ(record.dat_minor, datMinor);
        EXPECT_EQ(record.bitfield_test_results.Word(), bits);
    }

    registry.Set(L"SOFTWARE\\Vexora\\AVSolution\\VXSHIELDGLOBAL\\GLOBAL", L"vriuseipv6", DWORD{1});
    EXPECT_TRUE(DecodeReport(GetOSInfo({})).record.bitfield_test_results.Test(ResultBit::ipv6));
}

TEST(Collectors, OnAnEmptyMachineEveryOtherFieldIsAtItsFallback)
{
    ScratchRegistry registry;
    const HealthRecord record = DecodeReport(GetOSInfo({.hcmode = "periodic"})).record;
    EXPECT_EQ(record.os_64_bit, 1);
    EXPECT_EQ(record.vxcore_major, 255);
    EXPECT_EQ(record.vxcore_build, 65535);
    EXPECT_EQ(record.vxcore_pkg, 255);
    EXPECT_EQ(record.vantor_build, 43);
    EXPECT_EQ(record.throttle_mode, 0);
    EXPECT_EQ(record.count, 0);
    EXPECT_EQ(record.arch, HealthRecord::kDefaultArch);
    EXPECT_NE(record.os_major, 0);
    EXPECT_NE(record.os_build, 0);
}

TEST(Collectors, APreUpdateReportCarriesItsTextItems)
{
    ScratchRegistry registry;
    const ReportBytes bytes = GetPreUpdateInfo({.hcmode = "predatupdate"});
    const std::vector<std::string> items = DecodeReport(bytes).textItems;
    ASSERT_EQ(items.size(), 5u);
    EXPECT_EQ(items[0], "Unavailable"); // product, processor, language, ATP, graphics
    EXPECT_EQ(items[2].substr(0, 2), "0x");
    EXPECT_EQ(items[4], "Unavailable");
}

} // namespace
} // namespace vantor
