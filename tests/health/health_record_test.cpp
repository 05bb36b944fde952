#include "health/health_record.h"

#include <gtest/gtest.h>

#include <sstream>

namespace vantor {
namespace {

/// A record in which every field has a value of its own; wide fields differ in each byte.
HealthRecord DistinctRecord()
{
    HealthRecord record;
    record.mode = 3;
    record.os_major = 0x0A01;
    record.os_minor = 0x0B02;
    record.os_service = 0x0C03;
    record.os_build = 0x0D04;
    record.vxcore_major = 0x11;
    record.vxcore_minor = 0x12;
    record.vxcore_patch = 0x13;
    record.vxcore_build = 0x1415;
    record.vxcore_pkg = 0x16;
    record.dat_major = 0x2122;
    record.dat_minor = 0x2324;
    record.throttle_mode = 0x31;
    record.rep_communicator_major = 0x41;
    record.rep_communicator_minor = 0x42;
    record.rep_communicator_patch = 0x43;
    record.rep_communicator_build = 0x4445;
    record.vxshield_mem_10mb = 0x51;
    record.vxeatp_mem_10mb = 0x52;
    record.bitfield_test_results.Set(ResultBit::server, true);
    record.bitfield_test_results.Set(ResultBit::outlook, true);
    record.bitfield_test_results.Set(ResultBit::dat_update_ok, true);
    record.bitfield_test_results.Set(ResultBit::ipv6, true);
    record.count = 0x61;
    record.total_count = 0x62;
    record.arch = 0xAA64;
    return record;
}

constexpr std::array<std::uint8_t, 46> kDistinctBytes = {
    14,   3,    0x01, 0x0A, 0x02, 0x0B, 0x03, 0x0C, 0x04, 0x0D, 1,    0x11, 0x12, 0x13, 0x15, 0x14,
    0x16, 0x22, 0x21, 0x24, 0x23, 1,    0,    14,   43,   0,    0x31, 0x41, 0x42, 0x43, 0x45, 0x44,
    0x51, 0x52, 0x01, 0x02, 0x01, 0x10, 0,    0,    0,    0,    0x61, 0x62, 0x64, 0xAA};

TEST(HealthRecord, EveryByteIsInItsPlace)
{
    EXPECT_EQ(EncodeHealthRecord(DistinctRecord()), kDistinctBytes);
}

TEST(HealthRecord, DecodesWhatWasEncoded)
{
    EXPECT_EQ(EncodeHealthRecord(DecodeHealthRecord(kDistinctBytes)), kDistinctBytes);
    EXPECT_EQ(DecodeHealthRecord(kDistinctBytes).dat_minor, 0x2324);
    EXPECT_TRUE(DecodeHealthRecord(kDistinctBytes).bitfield_test_results.Test(ResultBit::ipv6));
}

TEST(HealthRecord, RendersEveryFieldInRecordOrder)
{
    std::ostringstream stream;
    RenderHealthRecord(stream, DistinctRecord());
    EXPECT_EQ(stream.str(),
              "{ \"struct_version\": 14 \"mode\": 3 \"os_major\": 2561 \"os_minor\": 2818 \"os_service\": 3075 "
              "\"os_build\": 3332 \"os_64_bit\": 1 \"vxcore_major\": 17 \"vxcore_minor\": 18 \"vxcore_patch\": 19 "
              "\"vxcore_build\": 5141 \"vxcore_pkg\": 22 \"dat_major\": 8482 \"dat_minor\": 8996 \"vantor_major\": 1 "
              "\"vantor_minor\": 0 \"vantor_patch\": 14 \"vantor_build\": 43 \"throttle_mode\": 49 "
              "\"rep_communicator_major\": 65 \"rep_communicator_minor\": 66 \"rep_communicator_patch\": 67 "
              "\"rep_communicator_build\": 17477 \"vxshield_mem_10mb\": 81 \"vxeatp_mem_10mb\": 82 "
              "\"bitfield_test_results\": 268501505 \"count\": 97 \"total_count\": 98 \"arch\": 43620 }");
}

TEST(TestResultBits, EachBitIsNamedWhereItStandsAndInTheOrderOfTheLog)
{
    const char* const kNamesByBit[] = {"server",
                                       "port",
                                       "user",
                                       "password",
                                       "domain",
                                       "principal",
                                       "target",
                                       "word",
                                       "excel",
                                       "outlook",
                                       "chrome",
                                       "msedge",
                                       "vxshield",
                                       "vxemms",
                                       "vxtray",
                                       "vxevtps",
                                       "dat_update_ok",
                                       "meltdown_compat",
                                       "os_type",
                                       "vxedisk_deleteFlag",
                                       "vxedisk_deleteFlagError",
                                       "vxedisk_startValue",
                                       "vxedisk_startValueError",
                                       "case_sensitivity_0",
                                       "case_sensitivity_1",
                                       "atp_enabled",
                                       "atp_observe_mode_enabled",
                                       "teams",
                                       "ipv6"};
    unsigned number = 0;
    for (const char* const name : kNamesByBit) {
        TestResultBits bits;
        bits.Set(static_cast<ResultBit>(number), true);
        EXPECT_EQ(bits.Word(), std::uint64_t{1} << number);
        std::ostringstream stream;
        RenderTestResultBits(stream, bits);
        EXPECT_NE(stream.str().find("\"" + std::string(name) + "\": 1"), std::string::npos) << stream.str();
        bits.Set(static_cast<ResultBit>(number), false);
        EXPECT_EQ(bits.Word(), 0u);
        ++number;
    }

    TestResultBits bits;
    bits.Set(ResultBit::msedge, true);
    std::ostringstream stream;
    RenderTestResultBits(stream, bits);
    EXPECT_EQ(stream.str(),
              "{ \"server\": 0 \"port\": 0 \"user\": 0 \"password\": 0 \"domain\": 0 \"principal\": 0 \"target\": 0 "
              "\"word\": 0 \"excel\": 0 \"msedge\": 1 \"chrome\": 0 \"outlook\": 0 \"vxshield\": 0 \"vxemms\": 0 "
              "\"vxtray\": 0 \"vxevtps\": 0 \"dat_update_ok\": 0 \"meltdown_compat\": 0 \"os_type\": 0 "
              "\"vxedisk_deleteFlag\": 0 \"vxedisk_deleteFlagError\": 0 \"vxedisk_startValue\": 0 "
              "\"vxedisk_startValueError\": 0 \"case_sensitivity_0\": 0 \"case_sensitivity_1\": 0 \"atp_enabled\": 0 "
              "\"atp_observe_mode_enabled\": 0 \"teams\": 0 \"ipv6\": 0 }");
}

} // namespace
} // namespace vantor
