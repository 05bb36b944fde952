// A fleet that never was: hosts that update day by day, and what goes wrong there.
#pragma once

#include "inspect/fleet/harm.h"
#include "inspect/pulse_text.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <vector>

namespace vantor::bench {

/// Harm that one content version does to a share of the hosts that update to it.
struct PlantedHarm {
    std::size_t harm = 0;      ///< place in fleet::kHarms
    std::uint32_t version = 0; ///< from 1
    double share = 0;
};

struct FleetSettings {
    std::uint32_t hosts = 10'000;
    std::uint32_t days = 10;
    std::uint32_t versions = 9; ///< one from some day on, at even distances
    std::uint64_t seed = 1;
    std::vector<PlantedHarm> planted;
};

/// The content version of that number, as a record has its major half.
inline constexpr std::uint16_t kFirstContent = 4700;

/// Makes the fleet's pulses in order of time, from 2026-01-01 on. Everything follows from the settings alone. A host is off
/// on some days, some updates fail, processes end by chance; some hosts have no client id, some pulses come twice, and some
/// are tests.
void MakeFleet(const FleetSettings& settings, const std::function<void(const inspect::DatedPulse&)>& give);

} // namespace vantor::bench
