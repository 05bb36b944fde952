// From what was gathered to what is reported.
#include "inspect/fleet/fleet_report.h"

#include "inspect/field_texts.h"
#include "inspect/fleet/fleet.h"
#include "inspect/fleet/number_text.h"
#include "inspect/printable_text.h"
#include "inspect/utc_time.h"

#include <algorithm>
#include <functional>
#include <tuple>
#include <utility>

namespace vantor::fleet {
namespace {

constexpr std::string_view kDateLayout = "YYYY-MM-DD";

/// How many updates with a harm are more than there would be at the rate of the other versions at most.
double Excess(const VersionReport& version)
{
    double excess = 0;
    for (const HarmRate& rate : version.harms) {
        const double expected = rate.otherInterval.high * static_cast<double>(rate.tries);
        excess += rate.standsOut ? static_cast<double>(rate.hits) - expected : 0;
    }
    return excess;
}

std::string HarmText(const HarmRate& rate)
{
    return std::string(rate.harm->text) + " after " + Count(rate.hits) + " of " + Count(rate.tries) + " updates (" +
           Percent(rate.Rate()) + ", at least " + Percent(rate.interval.low) + "; other versions " +
           Percent(rate.OtherRate()) + ", at most " + Percent(rate.otherInterval.high) + ')';
}

std::vector<CountedValue> ByHosts(std::vector<CountedValue> values)
{
    std::erase_if(values, [](const CountedValue& value) { return value.pulses == 0; });
    std::ranges::sort(values, [](const CountedValue& one, const CountedValue& other) {
        return std::tie(other.hosts, other.pulses, one.name) < std::tie(one.hosts, one.pulses, other.name);
    });
    return values;
}

} // namespace

bool VersionReport::StandsOut() const
{
    return std::ranges::any_of(harms, &HarmRate::standsOut);
}

std::string Verdict(const VersionReport& version)
{
    std::vector<const HarmRate*> notable;
    for (const HarmRate& rate : version.harms) {
        if (rate.standsOut) {
            notable.push_back(&rate);
        }
    }
    const std::string name = "Content " + version.version;
    if (notable.empty()) {
        return name + " does not stand out in " + Count(version.updates) + " updates" +
               (version.updates < kMinNotableHosts ? ", which are too few to tell." : ".");
    }
    const auto worst = std::ranges::max_element(notable, {}, [](const HarmRate* rate) { return rate->hits; });
    std::string text = name + " stands out: " + HarmText(**worst);
    for (const HarmRate* rate : notable) {
        text += rate == *worst ? "" : "; " + HarmText(*rate);
    }
    return text + '.';
}

FleetReport Fleet::Finish()
{
    CloseHosts();
    ResolveDays();
    m_report.hosts = m_hosts.size();
    m_report.groups = Groups();
    for (const ResultBitName& name : ResultBitNames()) {
        std::uint64_t& hosts = m_report.bits.emplace_back();
        for (std::uint32_t index = 0; index < m_hosts.size(); ++index) {
            hosts += m_hosts[index].health.bits.Test(name.bit) ? 1 : 0;
        }
    }
    m_report.days = BitsOfDays();
    m_report.versions = Versions();
    return std::move(m_report);
}

void Fleet::CloseHosts()
{
    for (std::uint32_t index = 0; index < m_hosts.size(); ++index) {
        CountLastOfDay(m_hosts[index]);
        CloseSilence(index, m_report.last);
        CloseUpdate(index);
    }
}

/// Gives the updates whose version is not told to the version that most updates of their day went to.
void Fleet::ResolveDays()
{
    for (const auto& [date, index] : m_dayIndices) {
        const Day& day = m_days[index];
        std::pair<std::uint64_t, std::uint32_t> most{0, kUnknownVersion};
        for (const auto& [version, pairs] : day.targets) {
            most = std::max(most, {pairs, version});
        }
        if (day.updates.updates != 0) {
            m_versions[most.second].Add(day.updates);
        }
    }
}

std::vector<Group> Fleet::Groups() const
{
    std::vector<Group> groups{GroupOfModes(), GroupOfDays()};
    for (std::size_t kind = 0; kind < kHostValues; ++kind) {
        groups.push_back(GroupOfValues(kind));
    }
    return groups;
}

Group Fleet::GroupOfModes() const
{
    std::vector<CountedValue> values(m_modes.size());
    for (std::size_t mode = 0; mode < m_modes.size(); ++mode) {
        values[mode] = {std::string(inspect::ModeText(static_cast<Mode>(mode))), 0, m_modes[mode]};
        for (std::uint32_t index = 0; index < m_hosts.size(); ++index) {
            values[mode].hosts += m_hosts[index].modes >> mode & 1U;
        }
    }
    return {"mode", "Mode", ByHosts(std::move(values))};
}

Group Fleet::GroupOfDays() const
{
    Group group{"day", "Day (UTC)", {}};
    for (const auto& [date, index] : m_dayIndices) {
        group.values.push_back({inspect::FormatUtc(date, kDateLayout), m_days[index].hosts, m_days[index].pulses});
    }
    return group;
}

Group Fleet::GroupOfValues(std::size_t kind) const
{
    const auto& entries = m_values[kind].Entries();
    std::vector<CountedValue> values(entries.size());
    for (std::size_t place = 0; place < entries.size(); ++place) {
        values[place] = {place == 0 ? "other" : kHostValueKinds[kind].name(entries[place].number), 0,
                         entries[place].pulses};
    }
    for (std::uint32_t index = 0; index < m_hosts.size(); ++index) {
        ++values[m_hosts[index].values[kind]].hosts;
    }
    return {kHostValueKinds[kind].key, kHostValueKinds[kind].text, ByHosts(std::move(values))};
}

std::vector<DayBits> Fleet::BitsOfDays() const
{
    std::vector<DayBits> days;
    for (const auto& [date, index] : m_dayIndices) {
        DayBits& day = days.emplace_back(DayBits{inspect::FormatUtc(date, kDateLayout), m_days[index].hosts, {}});
        for (const ResultBitName& name : ResultBitNames()) {
            day.bits.push_back(m_days[index].bits[static_cast<std::size_t>(name.bit)]);
        }
    }
    return days;
}

std::vector<VersionReport> Fleet::Versions() const
{
    Updates all;
    for (const auto& [version, updates] : m_versions) {
        all.Add(updates);
    }
    std::vector<VersionReport> versions;
    std::for_each(m_versions.rbegin(), m_versions.rend(), [&](const auto& entry) {
        const auto& [number, updates] = entry;
        VersionReport& version = versions.emplace_back();
        version.version = ContentVersionText(number);
        version.updates = updates.updates;
        version.pairs = updates.pairs;
        version.shieldMemory = updates.shieldMemory;
        version.eatpMemory = updates.eatpMemory;
        for (std::size_t harm = 0; harm < kHarms.size(); ++harm) {
            version.harms.push_back(Rate(harm, updates, all));
        }
    });
    std::ranges::stable_sort(versions, std::greater<>(), Excess);
    return versions;
}

HarmRate Fleet::Rate(std::size_t harm, const Updates& updates, const Updates& all) const
{
    const std::uint64_t Updates::*const tries =
        kHarms[harm].sign == Sign::silence ? &Updates::updates : &Updates::pairs;
    HarmRate rate;
    rate.harm = &kHarms[harm];
    rate.hits = updates.hits[harm];
    rate.tries = updates.*tries;
    rate.otherHits = all.hits[harm] - rate.hits;
    rate.otherTries = all.*tries - rate.tries;
    rate.interval = WilsonInterval(rate.hits, rate.tries);
    rate.otherInterval = WilsonInterval(rate.otherHits, rate.otherTries);
    rate.standsOut = rate.hits >= kMinNotableHosts && rate.interval.low > rate.otherInterval.high;
    for (std::size_t example = 0; example < std::min<std::uint64_t>(kExamples, rate.hits); ++example) {
        rate.examples.push_back(inspect::PrintableText(m_hosts[updates.examples[harm][example]].id));
    }
    return rate;
}

} // namespace vantor::fleet
