#include "inspect/field_texts.h"

#include "health/record/content_version.h"
#include "platform/text/formatting.h"

#include <algorithm>
#include <iterator>

namespace vantor::inspect {
namespace {

/// Explains the value in this record; empty if the number says it all.
using Explain = std::string (*)(std::uint64_t value, const HealthRecord& record);

std::string AsMode(std::uint64_t value, const HealthRecord& /*record*/)
{
    return std::string(ModeText(static_cast<Mode>(value)));
}

std::string AsEnginePart(std::uint64_t /*value*/, const HealthRecord& record)
{
    return IsEngineUnknown(record) ? "unknown" : "";
}

std::string AsContentPart(std::uint64_t value, const HealthRecord& /*record*/)
{
    return value == ContentVersion::kUnknown ? "unknown" : "";
}

std::string AsMemory(std::uint64_t value, const HealthRecord& /*record*/)
{
    return value == 0 ? "not running, below 10 MiB, or not readable"
                      : "about " + std::to_string(value * 10) + " MiB (modulo 2,560)";
}

/// For the process that also has a result bit for whether it is running.
std::string AsShieldMemory(std::uint64_t value, const HealthRecord& record)
{
    const bool isSmall = value == 0 && record.bitfield_test_results.Test(ResultBit::vxshield);
    return isSmall ? "below 10 MiB, or not readable" : value == 0 ? "not running" : AsMemory(value, record);
}

std::string AsWord(std::uint64_t value, const HealthRecord& /*record*/)
{
    return WordText(value);
}

std::string AsCounter(std::uint64_t value, const HealthRecord& record)
{
    const std::string counted = record.mode == Mode::preUpdate    ? "content corruptions"
                                : record.mode == Mode::postUpdate ? "updater restarts"
                                                                  : "not used in this mode";
    return counted + (value == 255 ? ", or more" : "");
}

std::string AsMachine(std::uint64_t value, const HealthRecord& /*record*/)
{
    return std::string(MachineText(value));
}

struct KnownField {
    std::string_view key;
    const char* text;
    Explain explain = nullptr;
};

constexpr KnownField kFields[] = {
    {"struct_version", "layout of the record"},
    {"mode", "mode of the run", AsMode},
    {"os_major", "Windows, major version"},
    {"os_minor", "Windows, minor version"},
    {"os_service", "Windows, service pack"},
    {"os_build", "Windows, build number"},
    {"os_64_bit", "64-bit program"},
    {"vxcore_major", "engine version, first part", AsEnginePart},
    {"vxcore_minor", "engine version, second part", AsEnginePart},
    {"vxcore_patch", "engine version, third part", AsEnginePart},
    {"vxcore_build", "engine version, fourth part", AsEnginePart},
    {"vxcore_pkg", "engine package", AsEnginePart},
    {"dat_major", "detection content, major version", AsContentPart},
    {"dat_minor", "detection content, minor version", AsContentPart},
    {"vantor_major", "VANTor version, first part"},
    {"vantor_minor", "VANTor version, second part"},
    {"vantor_patch", "VANTor version, third part"},
    {"vantor_build", "VANTor version, fourth part"},
    {"throttle_mode", "update throttle mode"},
    {"rep_communicator_major", "reputation communicator version, first part"},
    {"rep_communicator_minor", "reputation communicator version, second part"},
    {"rep_communicator_patch", "reputation communicator version, third part"},
    {"rep_communicator_build", "reputation communicator version, fourth part"},
    {"vxshield_mem_10mb", "working set of vxshield.exe", AsShieldMemory},
    {"vxeatp_mem_10mb", "working set of vxeatp.exe", AsMemory},
    {"bitfield_test_results", "test results", AsWord},
    {"count", "counter of this mode", AsCounter},
    {"total_count", "lifetime counter of this mode", AsCounter},
    {"arch", "native machine type", AsMachine},
};

struct KnownBit {
    ResultBit bit;
    std::string_view text;
};

constexpr KnownBit kBits[] = {
    {ResultBit::server, "a proxy host was given"},
    {ResultBit::port, "a proxy port was given"},
    {ResultBit::user, "a proxy user name was given"},
    {ResultBit::password, "a proxy password was given"},
    {ResultBit::domain, "a proxy domain was given"},
    {ResultBit::principal, "a proxy principal was given"},
    {ResultBit::target, "a proxy target was given"},
    {ResultBit::word, "winword.exe is running"},
    {ResultBit::excel, "excel.exe is running"},
    {ResultBit::outlook, "outlook.exe is running"},
    {ResultBit::chrome, "chrome.exe is running"},
    {ResultBit::msedge, "msedge.exe is running"},
    {ResultBit::vxshield, "vxshield.exe is running"},
    {ResultBit::vxemms, "vxemms.exe is running"},
    {ResultBit::vxtray, "vxtray.exe is running"},
    {ResultBit::vxevtps, "vxevtps.exe is running"},
    {ResultBit::dat_update_ok, "the content update succeeded, or none was reported"},
    {ResultBit::meltdown_compat, "Windows' quality compatibility value is in place"},
    {ResultBit::os_type, "the host is a Windows Server"},
    {ResultBit::vxedisk_deleteFlag, "the filter driver was marked for deletion"},
    {ResultBit::vxedisk_deleteFlagError, "that mark could not be removed"},
    {ResultBit::vxedisk_startValue, "the filter driver's start value was wrong"},
    {ResultBit::vxedisk_startValueError, "that start value could not be corrected"},
    {ResultBit::case_sensitivity_0, "NTFS folders may be case-sensitive (bit 0)"},
    {ResultBit::case_sensitivity_1, "NTFS folders may be case-sensitive (bit 1)"},
    {ResultBit::atp_enabled, "ATP is enabled"},
    {ResultBit::atp_observe_mode_enabled, "ATP only observes"},
    {ResultBit::teams, "teams.exe is running"},
    {ResultBit::ipv6, "the product prefers IPv6"},
};

} // namespace

bool IsEngineUnknown(const HealthRecord& record)
{
    return record.vxcore_major == 0xFF && record.vxcore_minor == 0xFF && record.vxcore_patch == 0xFF &&
           record.vxcore_build == 0xFFFF && record.vxcore_pkg == 0xFF;
}

std::string_view MachineText(std::uint64_t arch)
{
    return arch == 0x014C ? "x86" : arch == 0x8664 ? "AMD64" : arch == 0xAA64 ? "ARM64" : "";
}

std::string_view ModeText(Mode mode)
{
    const std::string_view name = ModeName(mode);
    return name.empty() ? "no known mode" : name;
}

std::string FieldText(const HealthRecordField& field, const HealthRecord& record)
{
    const auto* const known = std::ranges::find(kFields, std::string_view(field.key), &KnownField::key);
    if (known == std::end(kFields)) {
        return {};
    }
    const std::string explanation =
        known->explain == nullptr ? std::string() : known->explain(field.Value(record), record);
    return known->text + (explanation.empty() ? "" : ": " + explanation);
}

std::string_view BitText(ResultBit bit)
{
    const auto* const known = std::ranges::find(kBits, bit, &KnownBit::bit);
    return known == std::end(kBits) ? std::string_view() : known->text;
}

std::string WordText(std::uint64_t word)
{
    return "0x" + Hexadecimal(word, 16);
}

} // namespace vantor::inspect
