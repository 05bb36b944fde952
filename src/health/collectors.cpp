#include "health/collectors.h"

#include "health/content_version.h"
#include "health/host_probes.h"
#include "run/ipv6_preference.h"
#include "run/logging.h"

#include <sstream>
#include <string>
#include <vector>

namespace vantor {
namespace {

void MarkEngineVersionUnknown(HealthRecord& record)
{
    record.vxcore_major = 0xFF;
    record.vxcore_minor = 0xFF;
    record.vxcore_patch = 0xFF;
    record.vxcore_build = 0xFFFF;
    record.vxcore_pkg = 0xFF;
}

void SetContentVersion(HealthRecord& record, const RunConfig& config)
{
    const ScopeTrace scope("GetDatVersion");
    const auto given = ParseContentVersion(config.datver);
    if (!given && IsPeriodic(config)) {
        return;
    }
    const ContentVersion version = given.value_or(ContentVersion());
    record.dat_major = version.major;
    record.dat_minor = version.minor;
}

void SetMode(HealthRecord& record, const RunConfig& config)
{
    const ScopeTrace scope("GetConfigModeInfo");
    record.mode = IsPreUpdate(config) ? 1 : IsPostUpdate(config) ? 2 : IsPeriodic(config) ? 3 : 0;
}

/// Only whether each proxy option was given, never its value.
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

HealthRecord CollectRecord(const RunConfig& config)
{
    const ScopeTrace scope("GetOSInfo");
    HealthRecord record;
    TestResultBits& bits = record.bitfield_test_results;

    ReadOsVersion(record);
    bits.Set(ResultBit::dat_update_ok, config.datUpdateStatus == 0);
    MarkEngineVersionUnknown(record);
    SetContentVersion(record, config);
    SetMode(record, config);
    SetProxyBits(bits, config);
    record.arch = NativeMachine();
    bits.Set(ResultBit::ipv6, PrefersIpv6());

    std::ostringstream recordText;
    RenderHealthRecord(recordText, record);
    LogTrace("Sending: " + recordText.str());
    std::ostringstream bitsText;
    RenderTestResultBits(bitsText, bits);
    LogTrace("ResultBits: " + bitsText.str());
    return record;
}

/// "{ " and, for every byte, a blank and the byte as it is, the items' NULs included.
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

    // Product, processor, language, ATP and graphics.
    const std::vector<std::string> items(5, kUnavailable);
    const TextBlock block = BuildTextBlock(items);
    for (const std::string& item : block.leftOut) {
        LogWarning("The report has no room for the text item: " + item);
    }
    LogTrace("buffer: " + RenderTextBlock(block));
    return EncodeReport(record, block);
}

} // namespace vantor
