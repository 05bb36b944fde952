// The values of which a host has but one, such as the version of its Windows.
#pragma once

#include "health/record/health_record.h"
#include "inspect/fleet/host_table.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace vantor::fleet {

/// A content version as one number, and as text. Where either half is unknown, all of it is.
inline constexpr std::uint32_t kUnknownVersion = 0xFFFFFFFF;
std::uint32_t ContentVersionOf(const HealthRecord& record);
std::string ContentVersionText(std::uint32_t version);

struct HostValue {
    const char* key;  ///< in JSON and in the database
    const char* text; ///< for people
    std::uint64_t (*number)(const HealthRecord& record);
    std::string (*name)(std::uint64_t number);
};

/// Program, engine, content, Windows and architecture.
extern const HostValue kHostValueKinds[kHostValues];

/// The values of one kind that have come up, and the pulses that had them.
class ValueTable {
public:
    /// More values than this are counted as one, at place 0.
    static constexpr std::size_t kMaxValues = 4096;

    /// Counts a pulse, and returns the place of its value.
    std::uint16_t Count(std::uint64_t number);

    struct Entry {
        std::uint64_t number = 0;
        std::uint64_t pulses = 0;
    };
    const std::vector<Entry>& Entries() const { return m_entries; }

private:
    std::map<std::uint64_t, std::uint16_t> m_places;
    std::vector<Entry> m_entries{{}};
};

} // namespace vantor::fleet
