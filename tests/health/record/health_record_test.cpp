#include "health/record/health_record.h"

#include <gtest/gtest.h>

#include <sstream>

namespace vantor {
namespace {

/// A record in which every field has a value of its own; wide fields differ in each byte.
constexpr std::array<std::uint8_t, 46> kDistinctBytes = {
    14,   3,    0x01, 0x0A, 0x02, 0x0B, 0x03, 0x0C, 0x04, 0x0D, 1,    0x11, 0x12, 0x13, 0x15, 0x14,
    0x16, 0x22, 0x21, 0x24, 0x23, 1,    0,    14,   43,   0,    0x31, 0x41, 0x42, 0x43, 0x45, 0x44,
    0x51, 0x52, 0x01, 0x02, 0x01, 0x10, 0,    0,    0,    0,    0x61, 0x62, 0x64, 0xAA};

TEST(HealthRecord, EveryByteIsInItsPlace)
{
    const HealthRecord record = DecodeHealthRecord(kDistinctBytes);
    EXPECT_EQ(EncodeHealthRecord(record), kDistinctBytes);
    EXPECT_TRUE(record.bitfield_test_results.Test(ResultBit::ipv6));
    EXPECT_EQ(RenderHealthRecord(record),
              "{ \"struct_version\": 14 \"mode\": 3 \"os_major\": 2561 \"os_minor\": 2818 \"os_service\": 3075 "
              "\"os_build\": 3332 \"os_64_bit\": 1 \"vxcore_major\": 17 \"vxcore_minor\": 18 \"vxcore_patch\": 19 "
              "\"vxcore_build\": 5141 \"vxcore_pkg\": 22 \"dat_major\": 8482 \"dat_minor\": 8996 \"vantor_major\": 1 "
              "\"vantor_minor\": 0 \"vantor_patch\": 14 \"vantor_build\": 43 \"throttle_mode\": 49 "
              "\"rep_communicator_major\": 65 \"rep_communicator_minor\": 66 \"rep_communicator_patch\": 67 "
              "\"rep_communicator_build\": 17477 \"vxshield_mem_10mb\": 81 \"vxeatp_mem_10mb\": 82 "
              "\"bitfield_test_results\": 268501505 \"count\": 97 \"total_count\": 98 \"arch\": 43620 }");
}

TEST(TestResultBits, EachBitIsNamedWhereItStands)
{
    std::istringstream namesByBit(
        "server port user password domain principal target word excel outlook chrome msedge vxshield vxemms vxtray vxevtps "
        "dat_update_ok meltdown_compat os_type vxedisk_deleteFlag vxedisk_deleteFlagError vxedisk_startValue "
        "vxedisk_startValueError case_sensitivity_0 case_sensitivity_1 atp_enabled atp_observe_mode_enabled teams ipv6");
    unsigned number = 0;
    for (std::string name; namesByBit >> name; ++number) {
        TestResultBits bits;
        bits.Set(static_cast<ResultBit>(number), true);
        EXPECT_EQ(bits.Word(), std::uint64_t{1} << number);
        EXPECT_NE(RenderTestResultBits(bits).find("\"" + name + "\": 1"), std::string::npos) << name;
    }
    EXPECT_EQ(number, 29u);
}

} // namespace
} // namespace vantor
