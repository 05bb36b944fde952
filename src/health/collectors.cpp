#include "health/collectors.h"

#include "health/probes/host_probes.h"
#include "health/probes/process_probe.h"
#include "health/probes/product_probes.h"
#include "health/probes/text_probes.h"
#include "health/record/content_version.h"
#include "run/log/log_texts.h"
#include "run/log/logging.h"
#include "run/product/ipv6_preference.h"

#include <string>

namespace vantor {
namespace {

void SetContentVersion(HealthRecord& record, const RunConfig& config)
{
    const ScopeTrace scope("GetDatVersion");
    const auto given = ParseContentVersion(config.datver);
    if (!given && ModeOf(config) == Mode::periodic) {
        GetDATVersionFromReg(record);
        return;
    }
    const ContentVersion version = given.value_or(ContentVersion());
    record.dat_major = version.major;
    record.dat_minor = version.minor;
}

void SetMode(HealthRecord& record, const RunConfig& config)
{
    const ScopeTrace scope("GetConfigModeInfo");
    record.mode = ModeOf(config);
}

/// Reports only whether each proxy option was given, never its value.
void SetProxyBits(TestResultBits& bits, const RunConfig& config)
{
    const ScopeTrace scope("GetProxyInfo");
    bits.Set(ResultBit::server, !config.server.empty());
    bits.Set(ResultBit::port, config.port != 0);
    bits.Set(ResultBit::user, !config.username.empty());
    bits.Set(ResultBit::password, !config.password.empty());
    bits.Set(ResultBit::domain, !config.domain.empty());
    bits.Set(ResultBit::principal, !config.principal.empty());
    bits.Set(ResultBit::target, !config.target.empty());
}

/// Copies the results of the integrity checks that ran earlier.
void SetFilterDriverBits(TestResultBits& bits, const RunConfig& config)
{
    bits.Set(ResultBit::vxedisk_deleteFlag, config.vxediskDeleteFlag);
    bits.Set(ResultBit::vxedisk_deleteFlagError, config.vxediskDeleteFlagError);
    bits.Set(ResultBit::vxedisk_startValue, config.vxediskStartValue);
    bits.Set(ResultBit::vxedisk_startValueError, config.vxediskStartValueError);
}

HealthRecord CollectRecord(const RunConfig& config)
{
    const ScopeTrace scope("GetOSInfo");
    HealthRecord record;
    TestResultBits& bits = record.bitfield_test_results;

    ReadOsVersion(record);
    bits.Set(ResultBit::dat_update_ok, config.datUpdateStatus == 0);
    GetVXCoreVersion(record);
    GetThottleMode(record);
    SetContentVersion(record, config);
    SetMode(record, config);
    SetProxyBits(bits, config);
    GetProcessInfo(record, MapProcesses());
    bits.Set(ResultBit::meltdown_compat, IsQualityCompatible());
    bits.Set(ResultBit::os_type, IsServerProduct());
    ReadRepCommunicatorVersion(record);
    SetFilterDriverBits(bits, config);
    ReadCaseSensitivity(bits);
    ReadAtpState(bits);
    ReadCounters(record, config);
    record.arch = NativeMachine();
    bits.Set(ResultBit::ipv6, PrefersIpv6());

    LogTrace(texts::kSendingRecord + RenderHealthRecord(record));
    LogTrace("ResultBits: " + RenderTestResultBits(bits));
    return record;
}

/// "{ ", a blank before each byte of the block, including the NULs that end the items, and "}".
std::string RenderTextBlock(const TextBlock& block)
{
    std::string text = "{ ";
    for (const std::uint8_t byte : block.bytes) {
        text += ' ';
        text += static_cast<char>(byte);
    }
    text += '}';
    return text;
}

} // namespace

ReportBytes GetOSInfo(const RunConfig& config)
{
    return EncodeReport(CollectRecord(config));
}

ReportBytes GetPreUpdateInfo(const RunConfig& config)
{
    const HealthRecord record = CollectRecord(config);
    const TextBlock block = BuildTextBlock(CollectTextItems());
    for (const std::string& item : block.leftOut) {
        LogWarning("The report has no room for the text item: " + item);
    }
    LogTrace("buffer: " + RenderTextBlock(block));
    return EncodeReport(record, block);
}

} // namespace vantor
