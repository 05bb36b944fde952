#include "service/pulse_text.h"

#include "health/content_version.h"
#include "service/printable_text.h"

#include <cstdio>
#include <ctime>
#include <iomanip>
#include <sstream>
#include <string_view>

namespace vantor::service {
namespace {

using nlohmann::ordered_json;
using Clock = std::chrono::system_clock;

constexpr int kNameWidth = 24;

std::string TimeText(Clock::time_point time, const char* format)
{
    const std::time_t seconds = Clock::to_time_t(time);
    std::tm utc{};
    char text[32];
    if (::gmtime_r(&seconds, &utc) == nullptr || std::strftime(text, sizeof text, format, &utc) == 0) {
        return "an unknown time";
    }
    return text;
}

std::string ModeText(std::uint64_t mode)
{
    constexpr const char* kModes[] = {"no known mode", "predatupdate", "postdatupdate", "periodic"};
    return kModes[mode < std::size(kModes) ? mode : 0];
}

std::string WordText(std::uint64_t word)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%016llx", static_cast<unsigned long long>(word));
    return text;
}

std::string ArchText(std::uint64_t machine)
{
    return machine == 0x014C ? "x86" : machine == 0x8664 ? "AMD64" : machine == 0xAA64 ? "ARM64" : "";
}

/// What the value of a field stands for; empty where the number says it all.
std::string Meaning(std::string_view key, std::uint64_t value)
{
    if (key == "mode") {
        return ModeText(value);
    }
    if (key == "dat_major" || key == "dat_minor") {
        return value == ContentVersion::kUnknown ? "unknown" : "";
    }
    if (key.ends_with("_mem_10mb")) {
        return value == 0 ? "" : "about " + std::to_string(value * 10) + " MiB";
    }
    if (key == "bitfield_test_results") {
        return WordText(value);
    }
    if (key == "count" || key == "total_count") {
        return value == 255 ? "255 or more" : "";
    }
    return key == "arch" ? ArchText(value) : "";
}

std::ostream& WriteName(std::ostream& stream, std::string_view name)
{
    return stream << "    " << std::left << std::setw(kNameWidth) << name;
}

void WriteClient(std::ostream& stream, const ordered_json& client)
{
    stream << "  client\n";
    for (const auto& [key, value] : client.items()) {
        WriteName(stream, key) << (value.is_string() ? PrintableText(value.get_ref<const std::string&>())
                                                     : value.dump())
                               << '\n';
    }
}

void WriteRecord(std::ostream& stream, const HealthRecord& record)
{
    stream << "  record\n";
    for (const HealthRecordField& field : HealthRecordFields()) {
        const std::uint64_t value = field.Value(record);
        const std::string meaning = Meaning(field.key, value);
        WriteName(stream, field.key) << value << (meaning.empty() ? "" : " (" + meaning + ')') << '\n';
    }
}

void WriteResults(std::ostream& stream, TestResultBits bits)
{
    stream << "  results that hold\n" << (bits.Word() == 0 ? "    none\n" : "");
    for (const ResultBitName& name : ResultBitNames()) {
        if (bits.Test(name.bit)) {
            stream << "    " << name.key << '\n';
        }
        bits.Set(name.bit, false);
    }
    if (bits.Word() != 0) {
        stream << "    bits without a name: " << WordText(bits.Word()) << '\n';
    }
}

} // namespace

std::string PulseBlock(const Pulse& pulse, Clock::time_point received)
{
    std::ostringstream stream;
    stream << "pulse received " << TimeText(received, "%Y-%m-%d %H:%M:%S") << " UTC, "
           << ModeText(pulse.report.record.mode) << '\n';
    WriteClient(stream, pulse.client);
    WriteRecord(stream, pulse.report.record);
    WriteResults(stream, pulse.report.record.bitfield_test_results);
    if (!pulse.report.textItems.empty()) {
        stream << "  text items\n";
    }
    for (const std::string& item : pulse.report.textItems) {
        stream << "    " << PrintableText(item) << '\n';
    }
    return stream.str();
}

std::string PulseJson(const Pulse& pulse, Clock::time_point received)
{
    ordered_json record = ordered_json::object();
    for (const HealthRecordField& field : HealthRecordFields()) {
        record[field.key] = field.Value(pulse.report.record);
    }
    ordered_json bits = ordered_json::object();
    for (const ResultBitName& name : ResultBitNames()) {
        bits[name.key] = pulse.report.record.bitfield_test_results.Test(name.bit);
    }
    const ordered_json line = {{"received", TimeText(received, "%Y-%m-%dT%H:%M:%SZ")},
                               {"ci", pulse.client},
                               {"record", record},
                               {"bits", bits},
                               {"items", pulse.report.textItems},
                               {"report", pulse.reportBase64}};
    return line.dump(-1, ' ', true, ordered_json::error_handler_t::replace);
}

} // namespace vantor::service
