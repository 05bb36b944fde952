#include "inspect/fleet/report_text.h"
#include "inspect/pulse_text.h"
#include "inspect/utc_time.h"

namespace vantor::fleet {
namespace {

using nlohmann::ordered_json;

ordered_json GroupJson(const Group& group)
{
    ordered_json json = ordered_json::array();
    for (const CountedValue& value : group.values) {
        json.push_back({{"name", value.name}, {"hosts", value.hosts}, {"pulses", value.pulses}});
    }
    return json;
}

ordered_json HarmJson(const HarmRate& rate)
{
    return {
        {"name", rate.harm->key},
        {"updates", rate.hits},
        {"of", rate.tries},
        {"rate", rate.Rate()},
        {"low", rate.interval.low},
        {"high", rate.interval.high},
        {"others_rate", rate.OtherRate()},
        {"others_high", rate.otherInterval.high},
        {"stands_out", rate.standsOut},
        {"clients", rate.examples},
    };
}

ordered_json MemoryJson(const MemoryChange& memory)
{
    return {{"updates", memory.pairs}, {"before_mib", memory.BeforeMib()}, {"after_mib", memory.AfterMib()}};
}

ordered_json VersionJson(const VersionReport& version)
{
    ordered_json harms = ordered_json::array();
    for (const HarmRate& rate : version.harms) {
        harms.push_back(HarmJson(rate));
    }
    return {
        {"content", version.version},
        {"updates", version.updates},
        {"with_before_and_after", version.pairs},
        {"stands_out", version.StandsOut()},
        {"verdict", Verdict(version)},
        {"harms", harms},
        {"memory", {{"vxshield", MemoryJson(version.shieldMemory)}, {"vxeatp", MemoryJson(version.eatpMemory)}}},
    };
}

ordered_json BitsJson(const BitHosts& hosts)
{
    ordered_json json = ordered_json::object();
    const auto names = ResultBitNames();
    for (std::size_t bit = 0; bit < names.size(); ++bit) {
        json[names[bit].key] = hosts[bit];
    }
    return json;
}

} // namespace

std::string ReportJson(const FleetReport& report)
{
    ordered_json json{{"hosts", report.hosts}, {"pulses", report.pulses}};
    if (report.pulses != 0) {
        json["first"] = inspect::FormatUtc(report.first, inspect::kIsoTime);
        json["last"] = inspect::FormatUtc(report.last, inspect::kIsoTime);
    }
    for (const LeftOut& part : LeftOutOf(report)) {
        json["left_out"][part.key] = part.count;
        if (!part.first.empty()) {
            json["left_out"][std::string(part.key) + "_first"] = part.first;
        }
    }
    for (const Group& group : report.groups) {
        json["groups"][group.key] = GroupJson(group);
    }
    json["bits"] = BitsJson(report.bits);
    json["days"] = ordered_json::array();
    for (const DayBits& day : report.days) {
        json["days"].push_back({{"day", day.day}, {"hosts", day.hosts}, {"bits", BitsJson(day.bits)}});
    }
    json["versions"] = ordered_json::array();
    for (const VersionReport& version : report.versions) {
        json["versions"].push_back(VersionJson(version));
    }
    return inspect::JsonLine(json);
}

} // namespace vantor::fleet
