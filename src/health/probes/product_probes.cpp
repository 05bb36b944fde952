#include "health/probes/product_probes.h"

#include "health/record/dotted_version.h"
#include "platform/text/encoding.h"
#include "run/log/logging.h"
#include "run/product/file_version_info.h"
#include "run/product/registry_values.h"

#include <algorithm>
#include <exception>
#include <string>
#include <vector>

namespace vantor {
namespace {

/// A version number; 65535, with a warning, if it cannot be read or is not a REG_DWORD.
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

std::uint8_t ReadCounter(const RegistryValue& counter)
{
    return static_cast<std::uint8_t>(std::min<std::uint32_t>(ReadDword(counter).value_or(0), 255));
}

/// The product's installation directories, in search order.
std::vector<std::wstring> InstallDirectories()
{
    std::vector<std::wstring> directories;
    for (const RegistryValue& value : {registry::kEndpointDirectory32, registry::kEndpointDirectory64,
                                       registry::kAntiVirusDirectory, registry::kConsumerDirectory}) {
        const std::wstring directory = ReadWholeText(value).value_or(L"");
        if (!directory.empty()) {
            directories.push_back(directory);
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

    const auto key = RegistryKey::OpenForReading(registry::kEngineKey);
    if (!key) {
        LogWarning("Error: Unable to open key HKLM\\Software\\Vexora\\AVSolution\\AVS\\AVS");
        return;
    }
    const auto parts = ParseDottedVersion(ToNarrow(key->QueryWholeText(registry::kEngineVersion.name).value_or(L"")));
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
    const auto key = RegistryKey::OpenForReading(registry::kUpdaterKey);
    if (!key) {
        LogWarning("Unable to open key HKLM\\Software\\Vexora\\AVSolution\\DS\\DS");
        return;
    }
    const auto mode = key->QueryDword(registry::kThrottleMode.name);
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
    const auto key = RegistryKey::OpenForReading(registry::kUpdaterKey);
    if (!key) {
        LogWarning("Error: Unable to open key");
        return;
    }
    record.dat_major = ReadContentNumber(*key, registry::kContentMajor.name);
    record.dat_minor = ReadContentNumber(*key, registry::kContentMinor.name);
}

bool IsServerProduct()
{
    constexpr std::size_t kBufferBytes = 62;

    return ReadText(registry::kWindowsEdition, kBufferBytes) == L"ServerNT";
}

void ReadAtpState(TestResultBits& bits)
{
    bits.Set(ResultBit::atp_enabled, (ReadDword(registry::kAtpEnabled).value_or(0) & 1U) != 0);
    bits.Set(ResultBit::atp_observe_mode_enabled, (ReadDword(registry::kAtpObserves).value_or(0) & 1U) != 0);
}

bool IsQualityCompatible()
{
    return ReadDword(registry::kQualityCompat, 1) == 0U;
}

void ReadCaseSensitivity(TestResultBits& bits)
{
    const std::uint32_t setting = ReadDword(registry::kCaseSensitivity).value_or(0);
    bits.Set(ResultBit::case_sensitivity_0, (setting & 1U) != 0);
    bits.Set(ResultBit::case_sensitivity_1, (setting & 2U) != 0);
}

void ReadCounters(HealthRecord& record, const RunConfig& config)
{
    if (ModeOf(config) == Mode::preUpdate) {
        record.count = ReadCounter(registry::kCorruptions);
        record.total_count = ReadCounter(registry::kTotalCorruptions);
    } else if (ModeOf(config) == Mode::postUpdate) {
        record.count = ReadCounter(registry::kRestarts);
        record.total_count = ReadCounter(registry::kTotalRestarts);
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
