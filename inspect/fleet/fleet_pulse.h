// A pulse as the fleet's report reads it: who sent it, when it was received, and its report.
#pragma once

#include "inspect/pulse_text.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vantor::fleet {

/// The maximum length of a client id in bytes. Windows' own ids have 38.
inline constexpr std::size_t kMaxClientIdBytes = 128;

/// Reused from pulse to pulse, so that its texts need no memory of their own each time.
struct FleetPulse {
    std::chrono::sys_seconds received;
    std::string affid;
    std::string cid;
    std::string cliid; ///< empty: the host has none
    std::string xpoid; ///< empty, too, when there is none
    std::string prn;
    std::string pv;
    std::string sdkv;
    std::int64_t rid = 0;
    bool isTest = false; ///< "ro" is there
    Report report;
};

/// A text member of "ci", by its name.
struct ClientText {
    std::string_view key;
    std::string FleetPulse::*member;
};
inline constexpr ClientText kClientTexts[] = {
    {"affid", &FleetPulse::affid}, {"cid", &FleetPulse::cid}, {"cliid", &FleetPulse::cliid},
    {"xpoid", &FleetPulse::xpoid}, {"prn", &FleetPulse::prn}, {"pv", &FleetPulse::pv},
    {"sdkv", &FleetPulse::sdkv},
};

/// Takes a pulse over. Throws inspect::PulseError when its time or its client is unknown, or when its client id is longer
/// than kMaxClientIdBytes.
void Flatten(const inspect::DatedPulse& from, FleetPulse& to);

} // namespace vantor::fleet
