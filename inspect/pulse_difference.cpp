#include "inspect/pulse_difference.h"

#include "inspect/field_texts.h"
#include "inspect/printable_text.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

namespace vantor::inspect {
namespace {

using nlohmann::ordered_json;

constexpr std::string_view kRequestId = "rid";
constexpr std::string_view kBitField = "bitfield_test_results";

std::string ClientValue(const ordered_json& client, const std::string& key)
{
    const auto member = client.find(key);
    if (member == client.end()) {
        return "-";
    }
    return member->is_string() ? member->get<std::string>() : member->dump();
}

void AddChange(std::vector<Change>& changes, const std::string& name, std::string before, std::string after)
{
    if (before != after) {
        changes.push_back({name, std::move(before), std::move(after)});
    }
}

std::uint64_t BitsWithoutName(const Pulse& pulse)
{
    TestResultBits bits = pulse.report.record.bitfield_test_results;
    for (const ResultBitName& name : ResultBitNames()) {
        bits.Set(name.bit, false);
    }
    return bits.Word();
}

/// The items of one list that the other lacks, counting repetitions.
std::vector<std::string> Missing(std::vector<std::string> from, std::vector<std::string> in)
{
    std::ranges::sort(from);
    std::ranges::sort(in);
    std::vector<std::string> missing;
    std::ranges::set_difference(from, in, std::back_inserter(missing));
    return missing;
}

void WriteChanges(std::ostream& stream, const char* heading, const std::vector<Change>& changes)
{
    constexpr int kNameWidth = 24;
    stream << (changes.empty() ? "" : heading);
    for (const auto& [name, before, after] : changes) {
        stream << "    " << std::left << std::setw(kNameWidth) << name << PrintableText(before) << " -> "
               << PrintableText(after) << '\n';
    }
}

} // namespace

bool PulseDifference::IsEmpty() const
{
    return client.empty() && record.empty() && bits.empty() && itemsGone.empty() && itemsNew.empty();
}

PulseDifference Compare(const Pulse& before, const Pulse& after)
{
    PulseDifference difference;
    ordered_json members = before.client;
    members.update(after.client);
    for (const auto& [key, value] : members.items()) {
        if (key != kRequestId) {
            AddChange(difference.client, key, ClientValue(before.client, key), ClientValue(after.client, key));
        }
    }
    for (const HealthRecordField& field : HealthRecordFields()) {
        if (field.key != kBitField || BitsWithoutName(before) != BitsWithoutName(after)) {
            AddChange(difference.record, field.key, std::to_string(field.Value(before.report.record)),
                      std::to_string(field.Value(after.report.record)));
        }
    }
    for (const ResultBitName& name : ResultBitNames()) {
        const auto value = [&name](const Pulse& pulse) {
            return pulse.report.record.bitfield_test_results.Test(name.bit) ? "1" : "0";
        };
        AddChange(difference.bits, name.key, value(before), value(after));
    }
    if (before.report.record.mode == after.report.record.mode) {
        difference.itemsGone = Missing(before.report.textItems, after.report.textItems);
        difference.itemsNew = Missing(after.report.textItems, before.report.textItems);
    }
    return difference;
}

std::string DifferenceBlock(const PulseDifference& difference)
{
    std::ostringstream stream;
    stream << (difference.IsEmpty() ? "  nothing changed\n" : "");
    WriteChanges(stream, "  client\n", difference.client);
    WriteChanges(stream, "  record\n", difference.record);
    WriteChanges(stream, "  results\n", difference.bits);
    stream << (difference.itemsGone.empty() && difference.itemsNew.empty() ? "" : "  text items\n");
    for (const std::string& item : difference.itemsGone) {
        stream << "    - " << PrintableText(item) << '\n';
    }
    for (const std::string& item : difference.itemsNew) {
        stream << "    + " << PrintableText(item) << '\n';
    }
    return stream.str();
}

ordered_json DifferenceJson(const PulseDifference& difference)
{
    ordered_json json = ordered_json::object();
    const auto add = [&json](const char* name, const std::vector<Change>& changes) {
        json[name] = ordered_json::object();
        for (const auto& [key, before, after] : changes) {
            json[name][key] = {before, after};
        }
    };
    add("client", difference.client);
    add("record", difference.record);
    add("bits", difference.bits);
    json["items"] = {{"gone", difference.itemsGone}, {"new", difference.itemsNew}};
    return json;
}

} // namespace vantor::inspect
