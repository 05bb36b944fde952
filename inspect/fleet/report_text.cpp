#include "inspect/fleet/report_text.h"

#include "inspect/fleet/number_text.h"
#include "inspect/utc_time.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

namespace vantor::fleet {
namespace {

constexpr int kNameWidth = 48;
constexpr int kNumberWidth = 14;
constexpr std::size_t kListedValues = 15;

void WriteRow(std::ostream& stream, std::string_view name, std::initializer_list<std::string> cells)
{
    stream << "  " << std::left << std::setw(kNameWidth) << name << std::right;
    for (const std::string& cell : cells) {
        stream << std::setw(kNumberWidth) << cell;
    }
}

void WriteHead(std::ostream& stream, const FleetReport& report)
{
    stream << "Fleet of " << Count(report.hosts) << " hosts, " << Count(report.pulses) << " pulses";
    if (report.pulses != 0) {
        stream << " from " << inspect::FormatUtc(report.first, kReadableTime) << " to "
               << inspect::FormatUtc(report.last, kReadableTime) << " UTC";
    }
    stream << "\n\nNot in the counts below\n";
    for (const LeftOut& part : LeftOutOf(report)) {
        WriteRow(stream, part.text, {Count(part.count)});
        stream << (part.first.empty() ? "" : "  first: " + part.first) << '\n';
    }
}

void WriteVerdicts(std::ostream& stream, const FleetReport& report)
{
    stream << "\nContent versions, worst first\n" << (report.versions.empty() ? "  there were no updates\n" : "");
    for (const VersionReport& version : report.versions) {
        stream << "  " << Verdict(version) << '\n';
    }
}

void WriteMemory(std::ostream& stream, std::string_view process, const MemoryChange& memory)
{
    if (memory.pairs != 0) {
        stream << "  memory of " << process << ": " << Decimal(memory.BeforeMib(), 1) << " MiB before, "
               << Decimal(memory.AfterMib(), 1) << " MiB after, on average of " << Count(memory.pairs) << " updates\n";
    }
}

void WriteVersion(std::ostream& stream, const VersionReport& version)
{
    stream << "\nContent " << version.version << ": " << Count(version.updates) << " updates, " << Count(version.pairs)
           << " with a pulse before and after\n";
    WriteRow(stream, "after the update", {"updates", "rate", "others' rate"});
    stream << "  client ids\n";
    for (const HarmRate& rate : version.harms) {
        if (rate.hits == 0) {
            continue;
        }
        WriteRow(stream, std::string(rate.standsOut ? "! " : "") + rate.harm->text,
                 {Count(rate.hits), Percent(rate.Rate()), Percent(rate.OtherRate())});
        for (const std::string& example : rate.examples) {
            stream << "  " << example;
        }
        stream << '\n';
    }
    WriteMemory(stream, "vxshield.exe", version.shieldMemory);
    WriteMemory(stream, "vxeatp.exe", version.eatpMemory);
}

void WriteGroup(std::ostream& stream, const Group& group)
{
    stream << '\n';
    WriteRow(stream, group.text, {"hosts", "pulses"});
    stream << '\n';
    const std::size_t shown = std::min(group.values.size(), kListedValues);
    const std::size_t first = IsOfDays(group) ? group.values.size() - shown : 0;
    for (std::size_t index = first; index < first + shown; ++index) {
        const CountedValue& value = group.values[index];
        WriteRow(stream, value.name, {Count(value.hosts), Count(value.pulses)});
        stream << '\n';
    }
    if (shown < group.values.size()) {
        stream << "  and " << Count(group.values.size() - shown) << " more\n";
    }
}

void WriteBits(std::ostream& stream, const FleetReport& report)
{
    stream << '\n';
    WriteRow(stream, "Result that holds in the host's latest pulse", {"hosts", "share"});
    stream << '\n';
    const auto names = ResultBitNames();
    for (std::size_t bit = 0; bit < names.size(); ++bit) {
        WriteRow(stream, names[bit].key, {Count(report.bits[bit]), Percent(Share(report.bits[bit], report.hosts))});
        stream << '\n';
    }
}

} // namespace

bool IsOfDays(const Group& group)
{
    return group.key == std::string_view("day");
}

std::vector<LeftOut> LeftOutOf(const FleetReport& report)
{
    return {
        {"without_id", "pulses of hosts without a client id", report.withoutId, {}},
        {"tests", "pulses marked as tests", report.tests, {}},
        {"duplicates", "pulses that came twice", report.duplicates, {}},
        {"malformed", "malformed lines", report.malformed.count, report.malformed.first},
        {"out_of_order", "pulses older than their host's latest", report.outOfOrder.count, report.outOfOrder.first},
        {"no_room", "pulses of hosts or days beyond the limit", report.noRoom.count, report.noRoom.first},
    };
}

std::string ReportText(const FleetReport& report)
{
    std::ostringstream stream;
    WriteHead(stream, report);
    WriteVerdicts(stream, report);
    for (const VersionReport& version : report.versions) {
        WriteVersion(stream, version);
    }
    for (const Group& group : report.groups) {
        WriteGroup(stream, group);
    }
    WriteBits(stream, report);
    return stream.str();
}

} // namespace vantor::fleet
