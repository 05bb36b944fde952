// The version of the product's detection content (the DAT) as the updater passes it on the command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vantor {

struct ContentVersion {
    /// What both numbers are when no version is known.
    static constexpr std::uint16_t kUnknown = 0xFFFF;

    std::uint16_t major = kUnknown;
    std::uint16_t minor = kUnknown;
};

/// Parses "MAJOR.MINOR" of 3 to 15 characters; anything else gives no version.
std::optional<ContentVersion> ParseContentVersion(std::string_view text);

} // namespace vantor
