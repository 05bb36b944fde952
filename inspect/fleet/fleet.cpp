#include "inspect/fleet/fleet.h"

#include "inspect/printable_text.h"
#include "inspect/utc_time.h"

#include <algorithm>
#include <bit>

namespace vantor::fleet {
namespace {

using namespace std::chrono_literals;
using std::chrono::sys_seconds;

constexpr auto kMaxUpdateTime = 6h; ///< from the pulse before to the pulse after
constexpr auto kSilence = 24h;
constexpr std::size_t kMaxVersions = 4096;
constexpr Target kDayTarget = Target{1} << 32; ///< plus the index of a day
/// Of pulses without a client id, some of the latest are told apart by their request ids.
constexpr std::size_t kRequestIdPlaces = 1U << 16;

std::size_t ModeIndex(Mode mode)
{
    const auto index = static_cast<std::size_t>(mode);
    return index <= static_cast<std::size_t>(Mode::periodic) ? index : 0;
}

void AddMemory(MemoryChange& change, std::uint8_t before, std::uint8_t after)
{
    if (before != 0 && after != 0) {
        ++change.pairs;
        change.before += before;
        change.after += after;
    }
}

std::string ExampleOf(const FleetPulse& pulse)
{
    return inspect::FormatUtc(pulse.received, inspect::kIsoTime) + ", client " + inspect::PrintableText(pulse.cliid);
}

} // namespace

void Fleet::Updates::Add(HarmSet harms, bool hasPair, std::uint32_t host)
{
    ++updates;
    pairs += hasPair ? 1 : 0;
    for (; harms != 0; harms &= harms - 1) {
        const auto harm = static_cast<std::size_t>(std::countr_zero(harms));
        if (hits[harm] < kExamples) {
            examples[harm][hits[harm]] = host;
        }
        ++hits[harm];
    }
}

void Fleet::Updates::Add(const Updates& others)
{
    updates += others.updates;
    pairs += others.pairs;
    for (std::size_t harm = 0; harm < kHarms.size(); ++harm) {
        for (std::size_t example = 0; example < std::min<std::uint64_t>(kExamples, others.hits[harm]); ++example) {
            if (hits[harm] + example < kExamples) {
                examples[harm][hits[harm] + example] = others.examples[harm][example];
            }
        }
        hits[harm] += others.hits[harm];
    }
    for (const auto memory : {&Updates::shieldMemory, &Updates::eatpMemory}) {
        (this->*memory).pairs += (others.*memory).pairs;
        (this->*memory).before += (others.*memory).before;
        (this->*memory).after += (others.*memory).after;
    }
}

Fleet::Fleet(FleetLimits limits) : m_limits(limits), m_hosts(limits.hosts), m_requestIds(kRequestIdPlaces) {}

Fate Fleet::Add(const FleetPulse& pulse)
{
    if (pulse.isTest) {
        ++m_report.tests;
        return Fate::test;
    }
    if (pulse.cliid.empty()) {
        return AddWithoutId(pulse);
    }
    const std::uint16_t day = DayOf(pulse.received);
    const std::uint32_t index = day == kNoDay ? HostTable::kNoRoom : m_hosts.Find(pulse.cliid);
    if (index == HostTable::kNoRoom) {
        m_report.noRoom.Add(ExampleOf(pulse));
        return Fate::noRoom;
    }
    Host& host = m_hosts[index];
    if (host.HasSent(pulse.rid)) {
        ++m_report.duplicates;
        return Fate::duplicate;
    }
    if (host.pulses != 0 && pulse.received < host.latest) {
        m_report.outOfOrder.Add(ExampleOf(pulse));
        return Fate::outOfOrder;
    }
    CountPulse(host, pulse.report.record, day);
    FollowUpdate(index, pulse.report.record, pulse.received);
    host.requestIds[host.pulses++ % Host::kRequestIds] = pulse.rid;
    host.latest = pulse.received;
    m_report.first = m_report.pulses == 0 ? pulse.received : std::min(m_report.first, pulse.received);
    m_report.last = m_report.pulses == 0 ? pulse.received : std::max(m_report.last, pulse.received);
    ++m_report.pulses;
    return Fate::counted;
}

Fate Fleet::AddWithoutId(const FleetPulse& pulse)
{
    std::int64_t& place = m_requestIds[static_cast<std::uint64_t>(pulse.rid) % kRequestIdPlaces];
    if (place == pulse.rid && pulse.rid != 0) {
        ++m_report.duplicates;
        return Fate::duplicate;
    }
    place = pulse.rid;
    ++m_report.withoutId;
    return Fate::withoutId;
}

/// The day's index, a new one where it is not known yet, or kNoDay when there is no room for it.
std::uint16_t Fleet::DayOf(sys_seconds time)
{
    const auto date = std::chrono::floor<std::chrono::days>(time);
    const auto known = m_dayIndices.find(date);
    if (known != m_dayIndices.end()) {
        return known->second;
    }
    if (m_days.size() >= m_limits.days) {
        return kNoDay;
    }
    const auto index = static_cast<std::uint16_t>(m_days.size());
    m_days.emplace_back().date = date;
    m_dayIndices.emplace(date, index);
    return index;
}

void Fleet::CountPulse(Host& host, const HealthRecord& record, std::uint16_t day)
{
    if (host.pulses != 0 && host.day != day) {
        CountLastOfDay(host);
    }
    m_days[day].hosts += host.pulses == 0 || host.day != day ? 1 : 0;
    ++m_days[day].pulses;
    host.day = day;
    host.health = HostHealth::Of(record);
    host.modes |= static_cast<std::uint8_t>(1U << ModeIndex(record.mode));
    ++m_modes[ModeIndex(record.mode)];
    for (std::size_t kind = 0; kind < kHostValues; ++kind) {
        host.values[kind] = m_values[kind].Count(kHostValueKinds[kind].number(record));
    }
}

/// Counts the host's latest bits for the day that it goes on from.
void Fleet::CountLastOfDay(const Host& host)
{
    std::uint64_t word = host.health.bits.Word() & ((std::uint64_t{1} << kBits) - 1);
    for (; word != 0; word &= word - 1) {
        ++m_days[host.day].bits[static_cast<std::size_t>(std::countr_zero(word))];
    }
}

/// Takes a pulse as one from before an update, from after it, or as a sign of life. The host has its day already.
void Fleet::FollowUpdate(std::uint32_t index, const HealthRecord& record, sys_seconds time)
{
    Host& host = m_hosts[index];
    CloseSilence(index, time);
    host.wasHeardSince = true;
    if (record.mode == Mode::preUpdate) {
        host.isWaiting = true;
        host.wasHeardSince = false;
        host.beforeDay = host.day;
        host.beforeVersion = ContentVersionOf(record);
        host.beforeTime = time;
        host.before = HostHealth::Of(record);
    } else if (record.mode == Mode::postUpdate && host.isWaiting) {
        host.isWaiting = false;
        if (time - host.beforeTime <= kMaxUpdateTime) {
            const HostHealth after = HostHealth::Of(record);
            const Target target = TargetOf(host, record);
            AddMemory(UpdatesTo(target).shieldMemory, host.before.shieldMemory, after.shieldMemory);
            AddMemory(UpdatesTo(target).eatpMemory, host.before.eatpMemory, after.eatpMemory);
            CountUpdate(index, target, WhatGotWorse(host.before, after), true);
        }
    }
}

/// Counts a host as silent that has sent nothing between its pre-update pulse and `until`, when that is longer than a day.
void Fleet::CloseSilence(std::uint32_t index, sys_seconds until)
{
    const Host& host = m_hosts[index];
    if (host.isWaiting && !host.wasHeardSince && until - host.beforeTime > kSilence) {
        CountUpdate(index, kDayTarget + host.beforeDay, kSilent, false);
    }
}

/// The version that an update went to. One that failed and left the version as it was does not tell it, nor does a pulse
/// without a version.
Target Fleet::TargetOf(const Host& host, const HealthRecord& after)
{
    const std::uint32_t version = ContentVersionOf(after);
    const bool isTold = after.bitfield_test_results.Test(ResultBit::dat_update_ok) || version != host.beforeVersion;
    const bool hasRoom = m_versions.size() < kMaxVersions || m_versions.contains(version);
    if (version == kUnknownVersion || !isTold || !hasRoom) {
        return kDayTarget + host.beforeDay;
    }
    ++m_days[host.beforeDay].targets[version];
    return version;
}

Fleet::Updates& Fleet::UpdatesTo(Target target)
{
    return target >= kDayTarget ? m_days[target - kDayTarget].updates : m_versions[static_cast<std::uint32_t>(target)];
}

void Fleet::CountUpdate(std::uint32_t index, Target target, HarmSet harms, bool isPair)
{
    Host& host = m_hosts[index];
    if (host.hasUpdate && host.target != target) {
        CloseUpdate(index);
    }
    host.hasUpdate = true;
    host.target = target;
    host.harms |= harms;
    host.hasPair = host.hasPair || isPair;
}

void Fleet::CloseUpdate(std::uint32_t index)
{
    Host& host = m_hosts[index];
    if (host.hasUpdate) {
        UpdatesTo(host.target).Add(host.harms, host.hasPair, index);
    }
    host.hasUpdate = false;
    host.hasPair = false;
    host.harms = 0;
}

} // namespace vantor::fleet
