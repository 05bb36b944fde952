// The health record: the facts that a pulse reports, their 46 bytes on the wire, and their text in the log.
#pragma once

#include "run/config/run_config.h"
#include "vantor_version.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace vantor {

/// The conditions that a pulse reports; the values are bit numbers in TestResultBits.
enum class ResultBit : unsigned {
    server = 0,
    port = 1,
    user = 2,
    password = 3,
    domain = 4,
    principal = 5,
    target = 6,
    word = 7,
    excel = 8,
    outlook = 9,
    chrome = 10,
    msedge = 11,
    vxshield = 12,
    vxemms = 13,
    vxtray = 14,
    vxevtps = 15,
    dat_update_ok = 16,
    meltdown_compat = 17,
    os_type = 18,
    vxedisk_deleteFlag = 19,
    vxedisk_deleteFlagError = 20,
    vxedisk_startValue = 21,
    vxedisk_startValueError = 22,
    case_sensitivity_0 = 23,
    case_sensitivity_1 = 24,
    atp_enabled = 25,
    atp_observe_mode_enabled = 26,
    teams = 27,
    ipv6 = 28,
};

/// A 64-bit word of test results. A bit is 1 if its condition holds; bits 29 to 63 are always 0.
class TestResultBits {
public:
    constexpr bool Test(ResultBit bit) const { return (m_word >> static_cast<unsigned>(bit) & 1U) != 0; }
    constexpr void Set(ResultBit bit, bool holds)
    {
        const std::uint64_t mask = std::uint64_t{1} << static_cast<unsigned>(bit);
        m_word = holds ? m_word | mask : m_word & ~mask;
    }
    constexpr std::uint64_t Word() const { return m_word; }

private:
    std::uint64_t m_word = 0;
};

/// The name of a result bit in the log and on the service's side.
struct ResultBitName {
    ResultBit bit;
    const char* key;
};

/// All result bits in the order in which the log shows them: by bit number, except that "msedge", "chrome" and
/// "outlook" are reversed.
std::span<const ResultBitName> ResultBitNames();

/// The facts of one pulse, with default values until the probes fill them in. The log uses the members' names.
struct HealthRecord {
    static constexpr std::uint8_t kLayoutVersion = 14;
    static constexpr std::size_t kWireSize = 46;
    /// arch if the host's native machine is unknown: AMD64.
    static constexpr std::uint16_t kDefaultArch = 0x8664;

    std::uint8_t struct_version = kLayoutVersion;
    Mode mode = Mode::none; ///< after decoding this can be any number
    std::uint16_t os_major = 0;
    std::uint16_t os_minor = 0;
    std::uint16_t os_service = 0; ///< major number of the service pack
    std::uint16_t os_build = 0;   ///< low 16 bits
    std::uint8_t os_64_bit = 1;
    std::uint8_t vxcore_major = 0;
    std::uint8_t vxcore_minor = 0;
    std::uint8_t vxcore_patch = 0;
    std::uint16_t vxcore_build = 0;
    std::uint8_t vxcore_pkg = 0;
    std::uint16_t dat_major = 0;
    std::uint16_t dat_minor = 0;
    std::uint8_t vantor_major = VANTOR_VERSION_MAJOR;
    std::uint8_t vantor_minor = VANTOR_VERSION_MINOR;
    std::uint8_t vantor_patch = VANTOR_VERSION_PATCH;
    std::uint16_t vantor_build = VANTOR_VERSION_BUILD;
    std::uint8_t throttle_mode = 0;
    std::uint8_t rep_communicator_major = 0;
    std::uint8_t rep_communicator_minor = 0;
    std::uint8_t rep_communicator_patch = 0;
    std::uint16_t rep_communicator_build = 0;
    std::uint8_t vxshield_mem_10mb = 0; ///< working set in units of 10 MiB, low 8 bits
    std::uint8_t vxeatp_mem_10mb = 0;   ///< working set in units of 10 MiB, low 8 bits
    TestResultBits bitfield_test_results;
    std::uint8_t count = 0;
    std::uint8_t total_count = 0;
    std::uint16_t arch = 0; ///< native machine of the host, an IMAGE_FILE_MACHINE_ value
};

/// A field of the record on the wire: little-endian, packed, in record order.
struct HealthRecordField {
    const char* key;
    std::size_t offset; ///< in the wire bytes
    std::size_t size;   ///< in bytes: 1, 2 or 8
    std::size_t member; ///< offset of the member of HealthRecord

    /// The value of the field in a record.
    std::uint64_t Value(const HealthRecord& record) const;
};

/// All fields, in record order.
std::span<const HealthRecordField> HealthRecordFields();

/// The record's wire bytes.
std::array<std::uint8_t, HealthRecord::kWireSize> EncodeHealthRecord(const HealthRecord& record);

/// The record that the wire bytes hold. Does not check their layout version.
HealthRecord DecodeHealthRecord(std::span<const std::uint8_t, HealthRecord::kWireSize> bytes);

/// `{ "key": value "key": value }`, with values in decimal and without commas, as the log shows it.
std::string RenderHealthRecord(const HealthRecord& record);

/// `{ "key": 1 "key": 0 }`, with the bits in the order of ResultBitNames.
std::string RenderTestResultBits(const TestResultBits& bits);

} // namespace vantor
