#include "inspect/pulse_text.h"

#include "inspect/field_texts.h"
#include "inspect/printable_text.h"
#include "inspect/utc_time.h"

#include <iomanip>
#include <sstream>
#include <string_view>

namespace vantor::inspect {
namespace {

using nlohmann::ordered_json;

constexpr int kNameWidth = 24;
constexpr int kValueWidth = 12;

std::ostream& WriteName(std::ostream& stream, std::string_view name)
{
    return stream << "    " << std::left << std::setw(kNameWidth) << name;
}

void WriteClient(std::ostream& stream, const ordered_json& client)
{
    stream << (client.empty() ? "" : "  client\n");
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
        WriteName(stream, field.key) << std::setw(kValueWidth) << field.Value(record) << FieldText(field, record)
                                     << '\n';
    }
}

void WriteResults(std::ostream& stream, TestResultBits bits)
{
    stream << "  results that hold\n" << (bits.Word() == 0 ? "    none\n" : "");
    for (const ResultBitName& name : ResultBitNames()) {
        if (bits.Test(name.bit)) {
            WriteName(stream, name.key) << "bit " << std::setw(kValueWidth - 4) << static_cast<unsigned>(name.bit)
                                        << BitText(name.bit) << '\n';
        }
        bits.Set(name.bit, false);
    }
    if (bits.Word() != 0) {
        stream << "    bits without a name: " << WordText(bits.Word()) << '\n';
    }
}

} // namespace

std::string PulseTitle(const DatedPulse& pulse)
{
    return "pulse " +
           (pulse.received ? "received " + FormatUtc(*pulse.received, kReadableTime) + " UTC, " : std::string()) +
           std::string(ModeText(pulse.pulse.report.record.mode)) + '\n';
}

std::string PulseBlock(const DatedPulse& pulse)
{
    const Report& report = pulse.pulse.report;
    std::ostringstream stream;
    stream << PulseTitle(pulse);
    WriteClient(stream, pulse.pulse.client);
    WriteRecord(stream, report.record);
    WriteResults(stream, report.record.bitfield_test_results);
    if (!report.textItems.empty()) {
        stream << "  text items\n";
    }
    for (const std::string& item : report.textItems) {
        stream << "    " << PrintableText(item) << '\n';
    }
    return stream.str();
}

ordered_json PulseJson(const DatedPulse& pulse)
{
    const Report& report = pulse.pulse.report;
    ordered_json json = ordered_json::object();
    if (pulse.received) {
        json["received"] = FormatUtc(*pulse.received, kIsoTime);
    }
    if (!pulse.pulse.client.empty()) {
        json["ci"] = pulse.pulse.client;
    }
    for (const HealthRecordField& field : HealthRecordFields()) {
        json["record"][field.key] = field.Value(report.record);
    }
    for (const ResultBitName& name : ResultBitNames()) {
        json["bits"][name.key] = report.record.bitfield_test_results.Test(name.bit);
    }
    json["items"] = report.textItems;
    if (!pulse.pulse.reportBase64.empty()) {
        json["report"] = pulse.pulse.reportBase64;
    }
    return json;
}

std::string JsonLine(const ordered_json& json)
{
    return json.dump(-1, ' ', true, ordered_json::error_handler_t::replace);
}

DatedPulse PulseFromJson(const ordered_json& line)
{
    const auto text = [&line](const char* key) {
        const auto member = line.find(key);
        return member != line.end() && member->is_string() ? member->get<std::string>() : std::string();
    };
    const std::string report = text("report");
    DatedPulse pulse{ParseUtc(text("received"), kIsoTime), {}};
    if (report.empty()) {
        throw PulseError(R"("report" is not a Base64 text)");
    }
    if (!pulse.received && line.contains("received")) {
        throw PulseError(R"("received" is not a time such as "2026-01-31T23:59:59Z")");
    }
    // A line with a client is checked like the body that it came from.
    pulse.pulse = line.contains("ci") ? DecodePulse(JsonLine({{"ci", line["ci"]}, {"rpt", {{"vantor", report}}}}))
                                      : DecodeReportText(report);
    return pulse;
}

} // namespace vantor::inspect
