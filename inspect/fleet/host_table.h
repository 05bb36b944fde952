// What is remembered of each host.
#pragma once

#include "inspect/fleet/harm.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory_resource>
#include <string_view>
#include <vector>

namespace vantor::fleet {

/// A content version in one number, or a day on which the version of an update is looked up later.
using Target = std::uint64_t;

/// The kinds of values of which a host has but one.
inline constexpr std::size_t kHostValues = 5;

/// Of one size, however many pulses the host sends.
struct Host {
    /// How many of the latest request ids are remembered. A pulse comes twice within seconds, if at all.
    static constexpr std::size_t kRequestIds = 4;

    std::string_view id;
    std::uint64_t hash = 0;
    std::uint64_t pulses = 0;
    std::array<std::int64_t, kRequestIds> requestIds{};
    std::chrono::sys_seconds latest; ///< pulse
    HostHealth health;               ///< by the latest pulse
    std::array<std::uint16_t, kHostValues> values{};
    std::uint16_t day = 0;  ///< of the latest pulse
    std::uint8_t modes = 0; ///< a bit for each mode that it sent a pulse in

    // The latest pre-update pulse, until the pulse after the update.
    bool isWaiting = false;
    bool wasHeardSince = false;
    std::uint16_t beforeDay = 0;
    std::uint32_t beforeVersion = 0;
    std::chrono::sys_seconds beforeTime;
    HostHealth before;

    // The latest update, until the host goes on to another version.
    bool hasUpdate = false;
    bool hasPair = false;
    HarmSet harms = 0;
    Target target = 0;

    bool HasSent(std::int64_t requestId) const;
};

/// Hosts by client id, in order of their first pulses.
class HostTable {
public:
    explicit HostTable(std::size_t limit);

    /// The host's index, a new one where it is not known yet, or kNoRoom beyond the limit.
    std::uint32_t Find(std::string_view id);
    static constexpr std::uint32_t kNoRoom = 0xFFFFFFFF;

    Host& operator[](std::uint32_t index) { return m_hosts[index]; }
    const Host& operator[](std::uint32_t index) const { return m_hosts[index]; }
    std::size_t size() const { return m_hosts.size(); }

private:
    std::uint64_t HashOf(std::string_view id) const;
    void Grow();

    const std::size_t m_limit;
    const std::uint64_t m_seed; ///< so that nobody can choose ids that all fall into one place
    std::pmr::monotonic_buffer_resource m_ids;
    std::deque<Host> m_hosts;
    std::vector<std::uint32_t> m_places; ///< indices, or kNoRoom where a place is free; a power of two of them
};

} // namespace vantor::fleet
