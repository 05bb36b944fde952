#include "health/probes/product_probes.h"

#include "health/record/dotted_version.h"
#include "platform/registry.h"
#include "platform/text.h"
#include "run/log/logging.h"
#include "run/product/file_version_info.h"

#include <algorithm>
#include <exception>
#include <string>
#include <vector>

namespace vantor {
namespace {

constexpr wchar_t kUpdaterKey[] = L"Software\\Vexora\\AVSolution\\DS\\DS";

/// A version number that counts only as a REG_DWORD; 65535 otherwise.
std::uint16_t ReadContentNumber(const RegistryKey& key, const wchar_t* value)
{
    DWORD data = 0;
    DWORD size = sizeof(data);
    DWORD type = REG_NONE;
    if (key.Query(value, &data, size, &type) != ERROR_SUCCESS || type != REG_DWORD) {
        LogWarning("Error: Unable to read " + ToNarrow(value));
        return 0xFFFF;
    }
    return static_cast<std::uint16_t>(data);
}

std::uint8_t ReadCounter(const RegistryKey& key, const wchar_t* value)
{
    return static_cast<std::uint8_t>(std::min<std::uint32_t>(key.QueryDword(value).value_or(0), 255));
}

/// The product's installation directories, in the order in which they are searched.
std::vector<std::wstring> InstallDirectories()
{
    const struct {
        const wchar_t* key;
        const wchar_t* value;
    } kSources[] = {
        {L"SOFTWARE\\Vexora\\Endpoint\\Common", L"szInstallDir32"},
        {L"SOFTWARE\\Vexora\\Endpoint\\Common", L"szInstallDir64"},
        {L"SOFTWARE\\Vexora\\VxeAV", L"InstallDir"},
        {L"SOFTWARE\\Vexora\\VSC", L"InstallDir"},
    };
    std::vector<std::wstring> directories;
    for (const auto& [path, value] : kSources) {
        if (const auto key = RegistryKey::OpenForReading(path)) {
            const std::wstring directory = key->QueryWholeText(value).value_or(L"");
            if (!directory.empty()) {
                directories.push_back(directory);
            }
        }
    }
    return directories;
}

} // namespace

void GetVXCoreVersion(HealthRecord& record)
{
    const ScopeTrace scope("GetVXCoreVersion");
    record.vxcore_major = 0xFF;
    record.vxcore_minor = 0xFF;
    record.vxcore_patch = 0xFF;
    record.vxcore_build = 0xFFFF;
    record.vxcore_pkg = 0xFF;

    const auto key = RegistryKey::OpenForReading(L"Software\\Vexora\\AVSolution\\AVS\\AVS");
    if (!key) {
        LogWarning("Error: Unable to open key HKLM\\Software\\Vexora\\AVSolution\\AVS\\AVS");
        return;
    }
    const auto parts = ParseDottedVersion(ToNarrow(key->QueryWholeText(L"szVXCoreVersion").value_or(L"")));
    if (!parts || parts->size() != 5) {
        LogWarning("Error: Invalid value in key HKLM\\Software\\Vexora\\AVSolution\\AVS\\AVS");
        return;
    }
    record.vxcore_major = static_cast<std::uint8_t>((*parts)[0]);
    record.vxcore_minor = static_cast<std::uint8_t>((*parts)[1]);
    record.vxcore_patch = static_cast<std::uint8_t>((*parts)[2]);
    record.vxcore_build = (*parts)[3];
    record.vxcore_pkg = static_cast<std::uint8_t>((*parts)[4]);
}

void GetThottleMode(HealthRecord& record)
{
    const ScopeTrace scope("GetThottleMode");
    const auto key = RegistryKey::OpenForReading(kUpdaterKey);
    if (!key) {
        LogWarning("Unable to open key HKLM\\Software\\Vexora\\AVSolution\\DS\\DS");
        return;
    }
    const auto mode = key->QueryDword(L"dwUpdateThrottleMode");
    if (!mode) {
        LogWarning("Unable to read key HKLM\\Software\\Vexora\\AVSolution\\DS\\DS\\dwUpdateThrottleMode");
    } else if (*mode > 3) {
        LogWarning("Invalid value in key HKLM\\Software\\Vexora\\AVSolution\\DS\\DS\\dwUpdateThrottleMode");
    } else {
        record.throttle_mode = static_cast<std::uint8_t>(*mode);
    }
}

void GetDATVersionFromReg(HealthRecord& record)
{
    const ScopeTrace scope("GetDATVersionFromReg");
    const auto key = RegistryKey::OpenForReading(kUpdaterKey);
    if (!key) {
        LogWarning("Error: Unable to open key");
        return;
    }
    record.dat_major = ReadContentNumber(*key, L"dwContentMajorVersion");
    record.dat_minor = ReadContentNumber(*key, L"dwContentMinorVersion");
}

bool IsServerProduct()
{
    constexpr std::size_t kBufferBytes = 62;

    const auto key = RegistryKey::OpenForReading(L"SYSTEM\\ControlSet001\\Control\\ProductOptions");
    return key && key->QueryText(L"ProductType", kBufferBytes) == L"ServerNT";
}

void ReadAtpState(TestResultBits& bits)
{
    const auto key = RegistryKey::OpenForReading(L"Software\\Vexora\\Endpoint\\ATP");
    const auto isSet = [&key](const wchar_t* value) { return key && (key->QueryDword(value).value_or(0) & 1U) != 0; };
    bits.Set(ResultBit::atp_enabled, isSet(L"enabled"));
    bits.Set(ResultBit::atp_observe_mode_enabled, isSet(L"observeModeEnabled"));
}

bool IsQualityCompatible()
{
    const auto key = RegistryKey::OpenForReading(L"Software\\Microsoft\\Windows\\CurrentVersion\\QualityCompat");
    return key && key->QueryDword(L"cadca5fe-87d3-4b96-b7fb-a231484277cc", 1) == 0U;
}

void ReadCaseSensitivity(TestResultBits& bits)
{
    const auto key = RegistryKey::OpenForReading(L"SYSTEM\\CurrentControlset\\Control\\FileSystem");
    const std::uint32_t setting = key ? key->QueryDword(L"NtfsEnableDirCaseSensitivity").value_or(0) : 0;
    bits.Set(ResultBit::case_sensitivity_0, (setting & 1U) != 0);
    bits.Set(ResultBit::case_sensitivity_1, (setting & 2U) != 0);
}

void ReadCounters(HealthRecord& record, const RunConfig& config)
{
    if (IsPreUpdate(config)) {
        if (const auto key =
                RegistryKey::OpenForReading(L"Software\\Vexora\\AVSolution\\scannerdata\\ContentRefresh")) {
            record.count = ReadCounter(*key, L"dwCorruptionCount");
            record.total_count = ReadCounter(*key, L"dwTotalCorruptionCount");
        }
    } else if (IsPostUpdate(config)) {
        if (const auto key = RegistryKey::OpenForReading(kUpdaterKey)) {
            record.count = ReadCounter(*key, L"dwRestartCount");
            record.total_count = ReadCounter(*key, L"dwRestartCountTotal");
        }
    }
}

void ReadRepCommunicatorVersion(HealthRecord& record)
{
    for (const std::wstring& directory : InstallDirectories()) {
        const std::wstring path = directory + L"\\ReputationCommunicator.dll";
        LogTrace("Path in registry location " + ToNarrow(path));
        try {
            if (const auto version = ReadFileVersion(path)) {
                record.rep_communicator_major = static_cast<std::uint8_t>(version->major);
                record.rep_communicator_minor = static_cast<std::uint8_t>(version->minor);
                record.rep_communicator_patch = static_cast<std::uint8_t>(version->build);
                record.rep_communicator_build = version->revision;
                return;
            }
        } catch (const std::exception& error) {
            LogWarning(error.what() + (": " + ToNarrow(path)));
        }
    }
}

} // namespace vantor
