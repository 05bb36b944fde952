#include "health/repair/integrity_checks.h"

#include "health/protection/access_protection.h"
#include "health/record/dotted_version.h"
#include "platform/text/encoding.h"
#include "platform/text/multi_string.h"
#include "run/log/log_texts.h"
#include "run/log/logging.h"
#include "run/product/registry_values.h"

#include <string>

namespace vantor {
namespace {

constexpr REGSAM kRead = KEY_QUERY_VALUE | KEY_WOW64_64KEY;
constexpr REGSAM kReadAndWrite = KEY_QUERY_VALUE | KEY_SET_VALUE | KEY_WOW64_64KEY;

/// Requests access to the service's key and values. A refusal is only logged: the change is attempted anyway.
void RequestServiceAccess(ScopedAccessProtectionExclusionObject& exclusion)
{
    // The bits are defined by the product's module, as in its other requests.
    constexpr std::uint32_t kKeyAccess = 0x10038B;
    constexpr std::uint32_t kValueAccess = 0x10000B;
    constexpr wchar_t kKey[] = L"HKLM\\System\\CurrentControlSet\\Services\\vxedisk";
    constexpr wchar_t kValues[] = L"HKLM\\System\\CurrentControlSet\\Services\\vxedisk\\**";

    if (exclusion.InitialisationResult() != 0) {
        LogTrace(texts::kFailedOnInitializationOfExclusion);
        return;
    }
    if (!exclusion.GetRegistryKeyAccessToProcess(kKey, kKeyAccess)) {
        LogTrace(texts::kFailedOnCallGetRegistryKeyAccess + ("  Access requested for " + ToNarrow(kKey)));
    }
    if (!exclusion.GetRegistryValueAccessToProcess(kValues, kValueAccess)) {
        LogTrace(texts::kFailedOnCallGetRegistryValueAccess + (" Access requested for " + ToNarrow(kValues)));
    }
}

/// The Start value to set; std::nullopt if the current one is right.
std::optional<std::uint32_t> WantedStart(bool isListed, std::uint32_t start)
{
    constexpr std::uint32_t kBoot = 0;
    constexpr std::uint32_t kDemand = 3;
    constexpr std::uint32_t kDisabled = 4;

    if (isListed) {
        return start == kBoot ? std::nullopt : std::optional(kBoot);
    }
    return start == kDisabled || start == kUnreadableStart ? std::optional(kDemand) : std::nullopt;
}

} // namespace

void EnsureQualityCompat()
{
    constexpr auto& kValue = registry::kQualityCompat;

    const auto key = RegistryKey::OpenOrCreate(kValue.key, KEY_SET_VALUE | KEY_WOW64_64KEY);
    if (!key || key->QueryDword(kValue.name, 1) == 0U) {
        return;
    }
    key->DeleteValue(kValue.name);
    key->SetDword(kValue.name, 0);
}

void CheckVxediskDeleteFlag(RunConfig& config)
{
    constexpr auto& kFlag = registry::kFilterDriverDeleteFlag;

    if (!ReadDword(kFlag, 0, kRead)) {
        return;
    }
    config.vxediskDeleteFlag = true;

    ScopedAccessProtectionExclusionObject exclusion;
    RequestServiceAccess(exclusion);
    const auto writable = RegistryKey::Open(kFlag.key, kReadAndWrite);
    config.vxediskDeleteFlagError = !writable || writable->DeleteValue(kFlag.name) != ERROR_SUCCESS;
}

void CheckVxediskStartValue(RunConfig& config)
{
    if (!IsSystemCoreBelow20_5()) {
        return;
    }
    const bool isListed = IsvxediskInUpperFilters();
    const auto wanted = WantedStart(isListed, GetvxediskStartValue());
    if (!wanted) {
        return;
    }
    config.vxediskStartValue = true;

    ScopedAccessProtectionExclusionObject exclusion;
    RequestServiceAccess(exclusion);
    const auto writable = RegistryKey::Open(registry::kFilterDriverStart.key, kReadAndWrite);
    config.vxediskStartValueError =
        !writable || writable->SetDword(registry::kFilterDriverStart.name, *wanted) != ERROR_SUCCESS;
}

std::uint32_t GetvxediskStartValue()
{
    const std::uint32_t result = ReadDword(registry::kFilterDriverStart, 0, kRead).value_or(kUnreadableStart);
    LogTrace(texts::kGetvxediskStartValue + std::to_string(result));
    return result;
}

bool IsvxediskInUpperFilters()
{
    const auto key = RegistryKey::Open(registry::kDiskFilters.key, kRead);
    const auto filters = key ? key->QueryData(registry::kDiskFilters.name, REG_MULTI_SZ) : std::nullopt;
    const bool result = filters && MultiStringContains(*filters, u"vxedisk");
    LogTrace(std::string(texts::kIsvxediskInUpperFilters) + (result ? "1" : "0"));
    return result;
}

bool IsSystemCoreBelow20_5()
{
    const auto text = ReadWholeText(registry::kSystemCoreVersion, KEY_READ | KEY_WOW64_32KEY);
    const auto version = text ? ParseDottedVersion(ToNarrow(*text)) : std::nullopt;
    if (!version) {
        return false;
    }
    const std::uint16_t major = version->front();
    return major < 20 || (major == 20 && version->size() > 1 && (*version)[1] < 5);
}

} // namespace vantor
