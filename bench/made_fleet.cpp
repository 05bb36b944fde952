#include "bench/made_fleet.h"

#include "platform/text/formatting.h"

#include <openssl/evp.h>

#include <algorithm>
#include <string>

namespace vantor::bench {
namespace {

using namespace std::chrono_literals;
using fleet::HarmSet;
using std::chrono::sys_seconds;

constexpr sys_seconds kBegin = std::chrono::sys_days{std::chrono::January / 1 / 2026};
constexpr std::uint32_t kDaySeconds = 86'400;
constexpr double kOffShare = 0.03;
constexpr double kWithoutIdShare = 0.005;
constexpr double kTwiceShare = 0.001;
constexpr double kTestShare = 0.0005;
constexpr std::uint32_t kGrownMemory = 15; ///< in units of 10 MiB

/// How often each harm comes by chance, in the order of fleet::kHarms.
constexpr std::array<double, fleet::kHarms.size()> kChance{0.005,  0.0005, 0.0005, 0.002, 0.0005, 0.0002, 0.0002,
                                                           0.0001, 0.0003, 0.0001, 0.001, 0.0005, 0.003};

std::uint64_t Mixed(std::uint64_t word)
{
    word = (word ^ word >> 30) * 0xBF58476D1CE4E5B9U;
    word = (word ^ word >> 27) * 0x94D049BB133111EBU;
    return word ^ word >> 31;
}

/// Chance that is the same on every machine.
class Dice {
public:
    Dice(std::uint64_t seed, std::uint64_t host, std::uint64_t what) : m_state(Mixed(seed) ^ Mixed(host << 20 ^ what))
    {
    }

    std::uint64_t Number() { return Mixed(m_state += 0x9E3779B97F4A7C15U); }
    std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>((Number() >> 32) * limit >> 32); }
    bool Happens(double share) { return static_cast<double>(Number() >> 11) < share * 0x1p53; }

private:
    std::uint64_t m_state;
};

struct Event {
    std::uint32_t second = 0; ///< of the day
    std::uint32_t host = 0;
    Mode mode = Mode::none;
    std::uint32_t version = 0;
    HarmSet harms = 0; ///< that show
};

struct HostState {
    std::uint32_t version = 0;
    std::uint32_t offUntilDay = 0;
};

constexpr HarmSet Only(std::size_t harm)
{
    return HarmSet{1} << harm;
}

std::string Base64(const ReportBytes& bytes)
{
    std::string text(bytes.size() / 3 * 4 + 5, '\0');
    text.resize(static_cast<std::size_t>(::EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes.data(),
                                                           static_cast<int>(bytes.size()))));
    return text;
}

class Maker {
public:
    Maker(const FleetSettings& settings, const std::function<void(const inspect::DatedPulse&)>& give)
        : m_settings(settings), m_give(give), m_hosts(settings.hosts)
    {
    }

    void Make()
    {
        for (m_day = 0; m_day < m_settings.days; ++m_day) {
            std::vector<Event> events;
            for (std::uint32_t host = 0; host < m_settings.hosts; ++host) {
                PlanDay(host, events);
            }
            std::ranges::stable_sort(events, {}, &Event::second);
            std::ranges::for_each(events, [this](const Event& event) { Send(event); });
        }
    }

private:
    /// The version that is there on a day.
    std::uint32_t VersionOfDay() const { return m_day * m_settings.versions / std::max(1U, m_settings.days - 1); }

    void PlanDay(std::uint32_t number, std::vector<Event>& events)
    {
        HostState& host = m_hosts[number];
        Dice dice(m_settings.seed, number, std::uint64_t{2} * m_day);
        const std::uint32_t periodic = dice.Below(kDaySeconds);
        const std::uint32_t before = dice.Below(kDaySeconds - 4 * 3600);
        const std::uint32_t after = before + 60 + dice.Below(1800);
        if (m_day < host.offUntilDay || dice.Happens(kOffShare)) {
            return;
        }
        HarmSet harms = 0;
        std::uint32_t silentFrom = kDaySeconds;
        if (host.version != VersionOfDay()) {
            harms = HarmOfUpdate(dice);
            events.push_back({before, number, Mode::preUpdate, host.version, 0});
            if ((harms & fleet::kSilent) != 0) {
                silentFrom = before;
                host.offUntilDay = m_day + 2 + dice.Below(2);
            } else {
                const bool hasFailed = (harms & Only(0)) != 0;
                const bool tellsVersion = !hasFailed || dice.Happens(0.5);
                events.push_back(
                    {after, number, Mode::postUpdate, tellsVersion ? VersionOfDay() : host.version, harms});
                host.version = hasFailed ? host.version : VersionOfDay();
            }
        }
        if (periodic < silentFrom) {
            events.push_back({periodic, number, Mode::periodic, host.version, periodic > after ? harms : 0});
        }
    }

    HarmSet HarmOfUpdate(Dice& dice) const
    {
        HarmSet harms = 0;
        for (std::size_t harm = 0; harm < fleet::kHarms.size(); ++harm) {
            double share = kChance[harm];
            for (const PlantedHarm& planted : m_settings.planted) {
                share += planted.harm == harm && planted.version == VersionOfDay() ? planted.share : 0;
            }
            harms |= dice.Happens(share) ? Only(harm) : 0;
        }
        return harms;
    }

    void Send(const Event& event)
    {
        Dice dice(m_settings.seed, event.host, std::uint64_t{m_day} << 40 | std::uint64_t{event.second} << 8 | 1);
        inspect::DatedPulse pulse;
        pulse.received = kBegin + std::chrono::days(m_day) + std::chrono::seconds(event.second);
        pulse.pulse.client = ClientOf(event.host, dice);
        pulse.pulse.report.record = RecordOf(event, dice);
        ReportBytes bytes = EncodeReport(pulse.pulse.report.record);
        if (event.mode == Mode::preUpdate) {
            pulse.pulse.report.textItems = {"10.7.0." + std::to_string(event.host % 4 + 5000),
                                            "Intel64 Family 6 Model 158 Stepping 10",
                                            "0x0409",
                                            "10.7.0.6000",
                                            "6000",
                                            "Intel(R) UHD Graphics 630"};
            bytes = EncodeReport(pulse.pulse.report.record, BuildTextBlock(pulse.pulse.report.textItems));
        }
        pulse.pulse.reportBase64 = Base64(bytes);
        m_give(pulse);
        if (dice.Happens(kTwiceShare)) {
            m_give(pulse);
        }
    }

    nlohmann::ordered_json ClientOf(std::uint32_t host, Dice& dice) const
    {
        Dice fixed(m_settings.seed, host, 1ULL << 62);
        const std::string customer = "customer-" + std::to_string(fixed.Below(200));
        const std::string head = Hexadecimal(fixed.Number(), 16);
        const std::string digits = head + Hexadecimal(fixed.Number(), 16);
        nlohmann::ordered_json client{{"affid", "0"}, {"cid", customer}, {"cliid", GuidOf(digits)}};
        if (fixed.Happens(kWithoutIdShare)) {
            client["cliid"] = "";
        }
        client["xpoid"] = customer + "-console";
        client["pev"] = 1.2;
        client["prn"] = "VANTor-EPV";
        client["pv"] = "1.0.14";
        client["rid"] = static_cast<std::int64_t>(dice.Number());
        if (dice.Happens(kTestShare)) {
            client["ro"] = true;
        }
        client["sdkv"] = "VXCore REST Client";
        return client;
    }

    static std::string GuidOf(const std::string& digits)
    {
        return '{' + digits.substr(0, 8) + '-' + digits.substr(8, 4) + '-' + digits.substr(12, 4) + '-' +
               digits.substr(16, 4) + '-' + digits.substr(20) + '}';
    }

    HealthRecord RecordOf(const Event& event, Dice& dice) const
    {
        Dice fixed(m_settings.seed, event.host, 1ULL << 63);
        HealthRecord record;
        record.mode = event.mode;
        record.os_major = 10;
        record.os_build = std::array<std::uint16_t, 4>{19045, 22631, 26100, 20348}[fixed.Below(4)];
        record.vxcore_major = 6;
        record.vxcore_build = fixed.Happens(0.9) ? 2100 : 2090;
        record.dat_major = static_cast<std::uint16_t>(kFirstContent + event.version);
        record.vantor_build = static_cast<std::uint16_t>(fixed.Happens(0.8) ? record.vantor_build : 42);
        record.vxshield_mem_10mb = static_cast<std::uint8_t>(10 + fixed.Below(12) + dice.Below(3));
        record.vxeatp_mem_10mb = static_cast<std::uint8_t>(fixed.Happens(0.05) ? 0 : 5 + fixed.Below(8));
        record.arch = fixed.Happens(0.03) ? 0xAA64 : HealthRecord::kDefaultArch;
        TestResultBits& bits = record.bitfield_test_results;
        bits.Set(ResultBit::dat_update_ok, true);
        bits.Set(ResultBit::meltdown_compat, true);
        bits.Set(ResultBit::os_type, record.os_build == 20348);
        for (const ResultBit always : {ResultBit::vxshield, ResultBit::vxemms, ResultBit::vxtray, ResultBit::vxevtps}) {
            bits.Set(always, !fixed.Happens(0.02));
        }
        bits.Set(ResultBit::atp_enabled, fixed.Happens(0.8));
        for (const ResultBit sometimes : {ResultBit::word, ResultBit::excel, ResultBit::outlook, ResultBit::chrome,
                                          ResultBit::msedge, ResultBit::teams}) {
            bits.Set(sometimes, dice.Happens(0.4));
        }
        Show(event.harms, record);
        return record;
    }

    static void Show(HarmSet harms, HealthRecord& record)
    {
        for (std::size_t harm = 0; harm < fleet::kHarms.size(); ++harm) {
            if ((harms & Only(harm)) == 0) {
                continue;
            }
            switch (fleet::kHarms[harm].sign) {
            case fleet::Sign::bitIsClear:
            case fleet::Sign::bitWasCleared:
                record.bitfield_test_results.Set(fleet::kHarms[harm].bit, false);
                break;
            case fleet::Sign::bitWasSet:
                record.bitfield_test_results.Set(fleet::kHarms[harm].bit, true);
                break;
            case fleet::Sign::shieldMemory:
                record.vxshield_mem_10mb = static_cast<std::uint8_t>(record.vxshield_mem_10mb + kGrownMemory);
                break;
            case fleet::Sign::eatpMemory:
                record.vxeatp_mem_10mb = static_cast<std::uint8_t>(record.vxeatp_mem_10mb + kGrownMemory);
                break;
            case fleet::Sign::silence:
                break;
            }
        }
    }

    const FleetSettings& m_settings;
    const std::function<void(const inspect::DatedPulse&)>& m_give;
    std::vector<HostState> m_hosts;
    std::uint32_t m_day = 0;
};

} // namespace

void MakeFleet(const FleetSettings& settings, const std::function<void(const inspect::DatedPulse&)>& give)
{
    Maker(settings, give).Make();
}

} // namespace vantor::bench
