// Gathers the pulses of a fleet, and says what they tell of it.
#pragma once

#include "inspect/fleet/fleet_pulse.h"
#include "inspect/fleet/fleet_report.h"
#include "inspect/fleet/host_table.h"
#include "inspect/fleet/host_values.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace vantor::fleet {

/// A fleet of more is read as far as this goes; what is left out is counted.
struct FleetLimits {
    std::size_t hosts = 2'000'000; ///< some 250 bytes each
    std::size_t days = 3'660;      ///< some 700 bytes each
};

/// What became of a pulse that was added.
enum class Fate {
    counted,
    withoutId,  ///< its host has no client id
    duplicate,  ///< of a request id that its host has just used
    test,       ///< marked as one
    outOfOrder, ///< older than its host's latest
    noRoom,     ///< beyond FleetLimits
};

/// Pulses are added in the order in which they were received, and may be forgotten afterwards: memory grows with hosts and
/// days. Only the receiver's time counts. Updates are pairs of a host's latest pre-update pulse and its next post-update
/// one, within six hours.
class Fleet {
public:
    explicit Fleet(FleetLimits limits = {});

    Fate Add(const FleetPulse& pulse);

    /// What all of them say, without what was malformed. Once, after the last pulse.
    FleetReport Finish();

private:
    static constexpr std::size_t kExamples = 3;
    static constexpr std::size_t kBits = 29;

    /// The updates to one version, or those of one day whose version is looked up later.
    struct Updates {
        std::uint64_t updates = 0;
        std::uint64_t pairs = 0;
        std::array<std::uint64_t, kHarms.size()> hits{};
        /// Indices of hosts, for each harm the first kExamples that have it.
        std::array<std::array<std::uint32_t, kExamples>, kHarms.size()> examples{};
        MemoryChange shieldMemory;
        MemoryChange eatpMemory;

        void Add(HarmSet harms, bool hasPair, std::uint32_t host);
        void Add(const Updates& others);
    };

    struct Day {
        std::chrono::sys_days date;
        std::uint64_t hosts = 0;
        std::uint64_t pulses = 0;
        std::array<std::uint64_t, kBits> bits{};
        std::map<std::uint32_t, std::uint64_t> targets; ///< pairs by the version that they went to
        Updates updates;                                ///< to a version that no pulse names
    };

    static constexpr std::uint16_t kNoDay = 0xFFFF;

    Fate AddWithoutId(const FleetPulse& pulse);
    std::uint16_t DayOf(std::chrono::sys_seconds time);
    void CountPulse(Host& host, const HealthRecord& record, std::uint16_t day);
    void CountLastOfDay(const Host& host);
    void FollowUpdate(std::uint32_t index, const HealthRecord& record, std::chrono::sys_seconds time);
    void CloseSilence(std::uint32_t index, std::chrono::sys_seconds until);
    Target TargetOf(const Host& host, const HealthRecord& after);
    Updates& UpdatesTo(Target target);
    void CountUpdate(std::uint32_t index, Target target, HarmSet harms, bool isPair);
    void CloseUpdate(std::uint32_t index);

    void CloseHosts();
    void ResolveDays();
    std::vector<Group> Groups() const;
    Group GroupOfModes() const;
    Group GroupOfDays() const;
    Group GroupOfValues(std::size_t kind) const;
    std::vector<DayBits> BitsOfDays() const;
    std::vector<VersionReport> Versions() const;
    HarmRate Rate(std::size_t harm, const Updates& updates, const Updates& all) const;

    const FleetLimits m_limits;
    HostTable m_hosts;
    std::vector<std::int64_t> m_requestIds; ///< of pulses without a client id, each at the place that its value gives
    std::map<std::chrono::sys_days, std::uint16_t> m_dayIndices;
    std::vector<Day> m_days;
    std::array<ValueTable, kHostValues> m_values;
    std::array<std::uint64_t, 4> m_modes{}; ///< pulses by mode, at 0 those of no known one
    std::map<std::uint32_t, Updates> m_versions;
    FleetReport m_report; ///< what is known without a look at the hosts
};

} // namespace vantor::fleet
