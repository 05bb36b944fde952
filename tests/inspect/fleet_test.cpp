#include "inspect/fleet/fleet.h"

#include "inspect/fleet/fleet_command.h"
#include "inspect/fleet/pulse_line.h"
#include "inspect/sample_pulse.h"

#include <gtest/gtest.h>

#include <sstream>

namespace vantor::fleet {
namespace {

using enum ResultBit;

constexpr auto kDay = std::chrono::sys_days{std::chrono::January / 1 / 2026};
constexpr Mode kPre = Mode::preUpdate, kPost = Mode::postUpdate, kLater = Mode::periodic;

/// A pulse of a host on which all is well but for the bits that are flipped.
struct Step {
    const char* host;
    int minute;
    Mode mode;
    std::uint16_t version;
    std::vector<ResultBit> flipped = {};
    std::uint8_t memory = 0;
};

FleetPulse PulseOf(const Step& step)
{
    static std::int64_t requests = 0;
    FleetPulse pulse;
    pulse.received = kDay + std::chrono::minutes(step.minute);
    pulse.cliid = step.host;
    pulse.rid = ++requests;
    HealthRecord& record = pulse.report.record;
    record.mode = step.mode;
    record.dat_major = step.version;
    record.vxshield_mem_10mb = step.memory;
    for (const ResultBit bit : {vxshield, vxemms, vxtray, vxevtps, dat_update_ok, atp_enabled}) {
        record.bitfield_test_results.Set(bit, true);
    }
    for (const ResultBit bit : step.flipped) {
        record.bitfield_test_results.Set(bit, !record.bitfield_test_results.Test(bit));
    }
    return pulse;
}

/// Such as "2.0 3/2 silent 1", of each version with updates: those, those with a pulse before and after, harm.
std::string UpdatesOf(const FleetReport& report)
{
    std::string text;
    for (const VersionReport& version : report.versions) {
        text += (text.empty() ? "" : "; ") + version.version + ' ' + std::to_string(version.updates) + '/' +
                std::to_string(version.pairs);
        for (const HarmRate& rate : version.harms) {
            text += rate.hits == 0 ? "" : ' ' + std::string(rate.harm->key) + ' ' + std::to_string(rate.hits);
        }
    }
    return text;
}

TEST(Fleet, FollowsUpdates)
{
    const struct {
        std::vector<Step> steps;
        const char* updates;
    } kCases[] = {
        {{{"a", 0, kPre, 1}, {"a", 360, kPost, 2}}, "2.0 1/1"},
        {{{"a", 0, kPre, 1}, {"a", 361, kPost, 2}}, ""},
        {{{"a", 0, kPre, 1}, {"b", 5, kPost, 2}}, ""},
        {{{"a", 0, kPre, 1}, {"a", 9, kPre, 1, {vxtray}}, {"a", 10, kLater, 1}, {"a", 20, kPost, 2, {vxtray}}},
         "2.0 1/1"},
        {{{"a", 0, kPre, 1, {vxemms}}, {"a", 5, kPost, 2, {vxshield, vxtray, atp_enabled, vxedisk_startValueError}}},
         "2.0 1/1 vxshield_gone 1 vxtray_gone 1 atp_off 1 start_value_error 1"},
        {{{"a", 0, kPre, 1, {}, 20}, {"a", 5, kPost, 2, {}, 30}}, "2.0 1/1 vxshield_memory 1"},
        {{{"a", 0, kPre, 1, {}, 20}, {"a", 5, kPost, 2, {}, 29}}, "2.0 1/1"},
        {{{"a", 0, kPre, 1, {}, 30}, {"a", 5, kPost, 2, {}, 44}}, "2.0 1/1"},
        {{{"a", 0, kPre, 1}, {"a", 5, kPost, 2, {}, 40}}, "2.0 1/1"},
        // A failure that left the version, and silence, count for the version that others went to on that day.
        {{{"a", 0, kPre, 1}, {"b", 1, kPre, 1}, {"a", 5, kPost, 1, {dat_update_ok}}, {"b", 6, kPost, 2}},
         "2.0 2/2 update_failed 1"},
        {{{"a", 0, kPre, 1}, {"a", 5, kPost, 1, {dat_update_ok}}}, "unknown 1/1 update_failed 1"},
        {{{"a", 0, kPre, 1}, {"a", 5, kPost, 0xFFFF}}, "unknown 1/1"},
        {{{"a", 0, kPre, 1}, {"b", 1, kPre, 1}, {"b", 6, kPost, 2}, {"b", 1440, kLater, 2}}, "2.0 1/1"},
        {{{"a", 0, kPre, 1}, {"b", 1, kPre, 1}, {"b", 6, kPost, 2}, {"b", 1441, kLater, 2}}, "2.0 2/1 silent 1"},
        {{{"a", 0, kPre, 1}, {"a", 1500, kLater, 1}, {"a", 9000, kLater, 1}}, "unknown 1/0 silent 1"},
        // Attempts in a row at one version are one update.
        {{{"a", 0, kPre, 1},
          {"a", 5, kPost, 2, {dat_update_ok}},
          {"a", 9, kPre, 1},
          {"a", 15, kPost, 2, {vxtray}},
          {"a", 1500, kPre, 2},
          {"a", 1505, kPost, 3}},
         "3.0 1/1; 2.0 1/1 update_failed 1 vxtray_gone 1"},
    };
    for (const auto& [steps, updates] : kCases) {
        Fleet fleet;
        for (const Step& step : steps) {
            EXPECT_EQ(fleet.Add(PulseOf(step)), Fate::counted);
        }
        EXPECT_EQ(UpdatesOf(fleet.Finish()), updates) << &steps - &kCases[0].steps;
    }
}

TEST(Fleet, CountsHostsOnceAndBitsByTheLatestPulse)
{
    Fleet fleet({2, 3});
    for (const Step& step : {Step{"a", 0, kLater, 1, {ipv6}}, {"a", 1, kPre, 1}, {"b", 2, kLater, 1, {ipv6}}}) {
        fleet.Add(PulseOf(step));
    }
    fleet.Add(PulseOf({"a", 1440, kLater, 2}));
    EXPECT_EQ(fleet.Add(PulseOf({"a", 1439, kLater, 2})), Fate::outOfOrder);
    EXPECT_EQ(fleet.Add(PulseOf({"c", 1440, kLater, 2})), Fate::noRoom);
    EXPECT_EQ(fleet.Add(PulseOf({"", 1440, kLater, 2})), Fate::withoutId);
    const FleetReport report = fleet.Finish();
    std::string groups;
    for (const Group& group : report.groups) {
        for (const auto& [name, hosts, pulses] : group.values) {
            groups += name + ' ' + std::to_string(hosts) + '/' + std::to_string(pulses) + ' ';
        }
    }
    EXPECT_TRUE(groups.starts_with("periodic 2/3 predatupdate 1/1 2026-01-01 2/3 2026-01-02 1/1 ")) << groups;
    EXPECT_NE(groups.find(" 1.0 1/3 2.0 1/1 0.0.0 2/4 0x0000 2/4 "), std::string::npos) << groups;
    const std::size_t ipv6Place = report.bits.size() - 1; // it is shown last
    EXPECT_EQ(report.bits[ipv6Place], 1U);
    EXPECT_EQ(report.days[0].bits[ipv6Place], 1U);
    EXPECT_EQ(report.days[1].bits[ipv6Place], 0U);
}

TEST(Fleet, TellsChanceFromHarm)
{
    const struct {
        int hosts, harmed, otherHosts, otherHarmed;
        bool standsOut;
    } kCases[] = {
        {10, 3, 1000, 0, false},      {20, 10, 1000, 0, true}, {1000, 12, 3000, 9, false},    {1000, 40, 3000, 9, true},
        {1000, 40, 3000, 100, false}, {50, 50, 0, 0, false},   {20'000, 60, 20'000, 6, true},
    };
    for (const auto& [hosts, harmed, otherHosts, otherHarmed, standsOut] : kCases) {
        Fleet fleet;
        const auto update = [&](const std::string& host, std::uint16_t version, bool isHarmed) {
            fleet.Add(PulseOf({host.c_str(), 0, kPre, 1}));
            fleet.Add(PulseOf({host.c_str(), 5, kPost, version, std::vector<ResultBit>(isHarmed ? 1 : 0, vxtray)}));
        };
        for (int host = 0; host < hosts + otherHosts; ++host) {
            const bool isOther = host >= hosts;
            update(std::to_string(host), isOther ? 2 : 3, isOther ? host - hosts < otherHarmed : host < harmed);
        }
        const FleetReport report = fleet.Finish();
        EXPECT_EQ(report.versions[0].StandsOut(), standsOut) << Verdict(report.versions[0]);
        EXPECT_EQ(report.versions[0].version, "3.0");
    }
    const auto [low, high] = WilsonInterval(30, 1000, 1.96);
    EXPECT_NEAR(low, 0.02110, 1e-5);
    EXPECT_NEAR(high, 0.04250, 1e-5);
}

const std::string kTime = R"("received":"2026-01-31T23:59:59Z",)";

/// The sample body with a time, its first `from` replaced.
std::string Body(std::string_view from = "{", std::string_view to = "{")
{
    std::string body = '{' + kTime + inspect::SampleBody().substr(1);
    body.replace(body.find(R"("ro":true,)"), 10, "");
    return body.replace(body.find(from), from.size(), to);
}

/// Its line as the receiver writes it, with what cannot stand in a body unescaped.
std::string ReceiverLine()
{
    inspect::DatedPulse pulse{std::chrono::sys_seconds(kDay), inspect::DecodePulse(inspect::SampleBody())};
    pulse.pulse.client["cid"] = "\"\\\x1B\xC3\xA9\xED\xA0\x80\x01";
    return inspect::JsonLine(inspect::PulseJson(pulse));
}

/// What a reader makes of a line, as a line for the database or the reason against it.
std::string Judged(const auto& read, const std::string& line)
{
    FleetPulse pulse;
    try {
        read(line, pulse);
    } catch (const inspect::PulseError& error) {
        return error.what();
    }
    std::string text;
    for (const auto& [key, member] : kClientTexts) {
        text += pulse.*member + '|';
    }
    return text + std::to_string(pulse.rid) + '|' + std::to_string(pulse.received.time_since_epoch().count()) +
           (pulse.isTest ? "|test|" : "|") + RenderHealthRecord(pulse.report.record);
}

/// The reasons against lines that are no pulses; empty for those that are.
const std::pair<std::string, std::string> kLines[] = {
    {Body(), ""},
    {ReceiverLine(), ""},
    {Body(R"(,"sdkv")", R"(,"ro":true,"sdkv")"), ""},
    {Body() + " \r", ""},
    {Body(R"("h-1")", '"' + std::string(kMaxClientIdBytes, 'x') + '"'), ""},
    {Body(R"("h-1")", R"("h\u00e9\n")"), ""},
    {Body().substr(0, 150), "not valid JSON at byte 151"},
    {Body().substr(150), R"(the line does not begin with "{")"},
    {Body() + Body(), "not valid JSON at byte " + std::to_string(Body().size() + 1)},
    {Body() + "}", "not valid JSON at byte " + std::to_string(Body().size() + 1)},
    {"[1]", R"(the line does not begin with "{")"},
    {"\x01\x80\xFF" + std::string(3, '\0'), R"(the line does not begin with "{")"},
    {Body(kTime, ""), "it is not known when the pulse was received"},
    {Body("23:59:59", "24:59:59"), R"("received" is not a time such as "2026-01-31T23:59:59Z")"},
    {Body(R"("ci")", R"("x":1,"ci")"), ""},
    {Body(R"("ci")", R"("ca")"), "it is not known which client sent the pulse"},
    {Body(R"("pev":1.2)", R"("pev":1.3)"), R"("ci": "pev" is not the number 1.2)"},
    {Body("-5", "9223372036854775808"), R"("ci": "rid" is not an integer of 64 bits with sign)"},
    {Body(R"("cid")", R"("affid")"), R"("ci": "cliid" stands where "cid" belongs)"},
    {Body(R"("h-1")", "{}"), R"("ci": "cliid" is not a string)"},
    {Body(R"("vantor")", R"("other")"), R"("report" is not a Base64 text)"},
    {Body("DgIK", "DwIK"), R"("rpt": layout version 15 instead of 14)"},
    {Body("DgIK", "Dg!K"), R"("rpt": the report is not strict Base64)"},
    {Body(R"("h-1")", '"' + std::string(kMaxClientIdBytes + 1, 'x') + '"'),
     "the client id has 129 bytes, at most 128 are allowed"},
    {Body(R"("h-1")", '"' + std::string(1'000'000, 'x') + '"'), "the line is longer than 524288 bytes"},
    {Body("-5", std::string(100'000, '[')), "the JSON is nested too deeply"},
    {R"({"x":)" + std::string(5000, '[') + std::string(5000, ']') + '}', "the JSON is nested too deeply"},
};

TEST(FleetInput, CountsWhatIsMalformedAndGoesOn)
{
    for (const auto& [line, reason] : kLines) {
        for (const std::string end : {"\n", ""}) { // the last line may have none
            std::istringstream input("\n" + Body("h-1", "h-2") + '\n' + line + end);
            std::ostringstream output, errors;
            const int exitCode = RunFleet({FleetOptions::Output::csv, {}, {"-"}, {}}, input, output, errors);
            EXPECT_EQ(exitCode, reason.empty() ? 0 : 1) << line.substr(0, 300);
            EXPECT_EQ(errors.str().find("; the first: standard input: line 3: " + reason + '\n') != std::string::npos,
                      !reason.empty())
                << errors.str();
            EXPECT_NE(output.str().find("\"h-2\""), std::string::npos);
        }
    }
}

TEST(FleetInput, BothReadersAgree)
{
    PulseLineReader reader;
    for (const auto& [line, reason] : kLines) {
        std::string padded = line + std::string(kLinePadding, '"');
        const std::string_view text(padded.data(), line.size());
        EXPECT_EQ(Judged([&](const auto&, FleetPulse& pulse) { reader.Read(text, pulse); }, line),
                  Judged(ReadPulseLine, line));
    }
}

TEST(FleetInput, MergesFilesAndCountsAPulseOnce)
{
    const auto pulses = [](std::initializer_list<std::pair<const char*, const char*>> timesAndIds) {
        std::string lines;
        for (const auto& [time, id] : timesAndIds) {
            std::string line = Body("23:59:59", time);
            lines += line.replace(line.find(":-5"), 3, ':' + std::string(id)) + '\n';
        }
        return std::istringstream(lines);
    };
    std::istringstream one = pulses({{"01:00:00", "1"}, {"03:00:00", "3"}, {"05:00:00", "5"}});
    std::istringstream other = pulses({{"01:00:00", "1"}, {"02:00:00", "2"}, {"04:00:00", "4"}, {"03:30:00", "6"}});
    PulseStream stream;
    stream.Add("one", one);
    stream.Add("other", other);
    Fleet fleet;
    while (const FleetPulse* const pulse = stream.Next()) {
        fleet.Add(*pulse);
    }
    const FleetReport report = fleet.Finish();
    EXPECT_EQ(report.pulses, 5U);
    EXPECT_EQ(report.duplicates, 1U);
    EXPECT_EQ(report.outOfOrder.first, "2026-01-31T03:30:00Z, client h-1");
}

} // namespace
} // namespace vantor::fleet
