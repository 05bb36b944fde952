#include "inspect/fleet/pulse_csv.h"

#include "inspect/printable_text.h"
#include "inspect/utc_time.h"

namespace vantor::fleet {
namespace {

/// In quotes; quotes within are doubled.
void AppendText(std::string_view value, std::string& text)
{
    text += '"';
    for (const char character : inspect::PrintableText(value)) {
        text.append(character == '"' ? 2 : 1, character);
    }
    text += '"';
}

} // namespace

std::string CsvHeading()
{
    std::string text = "received,place";
    for (const auto& [key, member] : kClientTexts) {
        text += ',' + std::string(key);
    }
    text += ",rid";
    for (const HealthRecordField& field : HealthRecordFields()) {
        text += ',' + std::string(field.key);
    }
    for (const ResultBitName& name : ResultBitNames()) {
        text += ",bit_" + std::string(name.key);
    }
    return text + ",items\n";
}

void AppendCsvLine(const FleetPulse& pulse, std::uint64_t place, std::string& text)
{
    const HealthRecord& record = pulse.report.record;
    text += inspect::FormatUtc(pulse.received, inspect::kIsoTime) + ',' + std::to_string(place);
    for (const auto& [key, member] : kClientTexts) {
        text += ',';
        AppendText(pulse.*member, text);
    }
    text += ',' + std::to_string(pulse.rid);
    for (const HealthRecordField& field : HealthRecordFields()) {
        text += ',' + std::to_string(field.Value(record));
    }
    for (const ResultBitName& name : ResultBitNames()) {
        text += record.bitfield_test_results.Test(name.bit) ? ",1" : ",0";
    }
    std::string items;
    for (const std::string& item : pulse.report.textItems) {
        items += (items.empty() ? "" : "; ") + item;
    }
    text += ',';
    AppendText(items, text);
    text += '\n';
}

} // namespace vantor::fleet
