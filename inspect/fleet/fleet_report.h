// What a fleet's pulses say. Text, JSON and page are written from this alone.
#pragma once

#include "inspect/fleet/harm.h"
#include "inspect/fleet/pulse_stream.h"
#include "inspect/fleet/statistics.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vantor::fleet {

/// Hosts and pulses with one value of something. Where a host may have but one value, such as a version of Windows, its
/// latest pulse decides; it counts for each mode and each day that it sent a pulse in.
struct CountedValue {
    std::string name;
    std::uint64_t hosts = 0;
    std::uint64_t pulses = 0;
};

struct Group {
    const char* key;                  ///< in JSON and in the database
    std::string text;                 ///< for people
    std::vector<CountedValue> values; ///< days in order, everything else by falling number of hosts
};

/// Of how many hosts the latest pulse has each bit, in the order of ResultBitNames.
using BitHosts = std::vector<std::uint64_t>;

struct DayBits {
    std::string day; ///< such as "2026-01-31", UTC
    std::uint64_t hosts = 0;
    BitHosts bits; ///< by the last pulse of each host on that day
};

/// One kind of harm after the updates to one content version.
struct HarmRate {
    const Harm* harm = nullptr;
    std::uint64_t hits = 0;
    std::uint64_t tries = 0;
    Interval interval;
    std::uint64_t otherHits = 0; ///< after the updates to all other versions
    std::uint64_t otherTries = 0;
    Interval otherInterval;
    bool standsOut = false; ///< the interval lies above that of the other versions, and kMinNotableHosts are concerned
    std::vector<std::string> examples; ///< client ids, the first ones

    double Rate() const { return Share(hits, tries); }
    double OtherRate() const { return Share(otherHits, otherTries); }
};

/// Mean working set before and after the updates where both are known.
struct MemoryChange {
    std::uint64_t pairs = 0;
    std::uint64_t before = 0; ///< sum, in units of 10 MiB
    std::uint64_t after = 0;

    double BeforeMib() const { return 10 * Share(before, pairs); }
    double AfterMib() const { return 10 * Share(after, pairs); }
};

/// A content version and the updates to it. An update is a host's; attempts of one host at one version in a row are one.
struct VersionReport {
    std::string version;         ///< such as "4711.0", or "unknown"
    std::uint64_t updates = 0;   ///< with a pulse before, and one after or silence
    std::uint64_t pairs = 0;     ///< with a pulse before and one after
    std::vector<HarmRate> harms; ///< in the order of kHarms
    MemoryChange shieldMemory;
    MemoryChange eatpMemory;

    bool StandsOut() const;
};

struct FleetReport {
    std::uint64_t hosts = 0;
    std::uint64_t pulses = 0;       ///< of those hosts
    std::uint64_t withoutId = 0;    ///< pulses of hosts without a client id, counted nowhere else
    std::chrono::sys_seconds first; ///< pulse; both meaningless without a pulse
    std::chrono::sys_seconds last;
    Skipped malformed;
    Skipped outOfOrder; ///< older than the host's latest pulse
    Skipped noRoom;     ///< of hosts or days beyond what is kept
    std::uint64_t duplicates = 0;
    std::uint64_t tests = 0;
    std::vector<Group> groups;
    BitHosts bits;
    std::vector<DayBits> days;
    std::vector<VersionReport> versions; ///< those that stand out first, worst first; then the latest first
};

/// One sentence for people: whether the version stands out, and by what.
std::string Verdict(const VersionReport& version);

} // namespace vantor::fleet
