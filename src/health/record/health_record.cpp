#include "health/record/health_record.h"

#include <bit>
#include <cstddef>
#include <cstring>
#include <type_traits>

namespace vantor {
namespace {

// The wire format is little-endian, like every machine that this program runs on, so members are copied unchanged.
static_assert(std::endian::native == std::endian::little);
static_assert(std::is_standard_layout_v<HealthRecord> && sizeof(TestResultBits) == 8);

// clang-format off
#define FIELD(offset, name) {#name, offset, sizeof(HealthRecord::name), offsetof(HealthRecord, name)}
// clang-format on

constexpr HealthRecordField kFields[] = {
    FIELD(0, struct_version),
    FIELD(1, mode),
    FIELD(2, os_major),
    FIELD(4, os_minor),
    FIELD(6, os_service),
    FIELD(8, os_build),
    FIELD(10, os_64_bit),
    FIELD(11, vxcore_major),
    FIELD(12, vxcore_minor),
    FIELD(13, vxcore_patch),
    FIELD(14, vxcore_build),
    FIELD(16, vxcore_pkg),
    FIELD(17, dat_major),
    FIELD(19, dat_minor),
    FIELD(21, vantor_major),
    FIELD(22, vantor_minor),
    FIELD(23, vantor_patch),
    FIELD(24, vantor_build),
    FIELD(26, throttle_mode),
    FIELD(27, rep_communicator_major),
    FIELD(28, rep_communicator_minor),
    FIELD(29, rep_communicator_patch),
    FIELD(30, rep_communicator_build),
    FIELD(32, vxshield_mem_10mb),
    FIELD(33, vxeatp_mem_10mb),
    FIELD(34, bitfield_test_results),
    FIELD(42, count),
    FIELD(43, total_count),
    FIELD(44, arch),
};

#undef FIELD

constexpr bool FieldsFollowOneAnother()
{
    std::size_t next = 0;
    for (const HealthRecordField& field : kFields) {
        if (field.offset != next) {
            return false;
        }
        next += field.size;
    }
    return next == HealthRecord::kWireSize;
}
static_assert(FieldsFollowOneAnother());

// clang-format off
#define BIT(name) {ResultBit::name, #name}
// clang-format on

constexpr ResultBitName kBitNames[] = {
    BIT(server),
    BIT(port),
    BIT(user),
    BIT(password),
    BIT(domain),
    BIT(principal),
    BIT(target),
    BIT(word),
    BIT(excel),
    BIT(msedge),
    BIT(chrome),
    BIT(outlook),
    BIT(vxshield),
    BIT(vxemms),
    BIT(vxtray),
    BIT(vxevtps),
    BIT(dat_update_ok),
    BIT(meltdown_compat),
    BIT(os_type),
    BIT(vxedisk_deleteFlag),
    BIT(vxedisk_deleteFlagError),
    BIT(vxedisk_startValue),
    BIT(vxedisk_startValueError),
    BIT(case_sensitivity_0),
    BIT(case_sensitivity_1),
    BIT(atp_enabled),
    BIT(atp_observe_mode_enabled),
    BIT(teams),
    BIT(ipv6),
};

#undef BIT

} // namespace

std::span<const ResultBitName> ResultBitNames()
{
    return kBitNames;
}

std::span<const HealthRecordField> HealthRecordFields()
{
    return kFields;
}

std::uint64_t HealthRecordField::Value(const HealthRecord& record) const
{
    std::uint64_t value = 0;
    std::memcpy(&value, reinterpret_cast<const unsigned char*>(&record) + member, size);
    return value;
}

std::array<std::uint8_t, HealthRecord::kWireSize> EncodeHealthRecord(const HealthRecord& record)
{
    std::array<std::uint8_t, HealthRecord::kWireSize> bytes{};
    for (const HealthRecordField& field : kFields) {
        const std::uint64_t value = field.Value(record);
        std::memcpy(bytes.data() + field.offset, &value, field.size);
    }
    return bytes;
}

HealthRecord DecodeHealthRecord(std::span<const std::uint8_t, HealthRecord::kWireSize> bytes)
{
    HealthRecord record;
    for (const HealthRecordField& field : kFields) {
        std::memcpy(reinterpret_cast<unsigned char*>(&record) + field.member, bytes.data() + field.offset, field.size);
    }
    return record;
}

std::string RenderHealthRecord(const HealthRecord& record)
{
    std::string text = "{";
    for (const HealthRecordField& field : kFields) {
        text += std::string(" \"") + field.key + "\": " + std::to_string(field.Value(record));
    }
    return text + " }";
}

std::string RenderTestResultBits(const TestResultBits& bits)
{
    std::string text = "{";
    for (const ResultBitName& name : kBitNames) {
        text += std::string(" \"") + name.key + (bits.Test(name.bit) ? "\": 1" : "\": 0");
    }
    return text + " }";
}

} // namespace vantor
