// The version of the product's detection content (the DAT), which the updater passes on the command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vantor {

struct ContentVersion {
    /// Value of both numbers if the version is unknown.
    static constexpr std::uint16_t kUnknown = 0xFFFF;

    std::uint16_t major = kUnknown;
    std::uint16_t minor = kUnknown;
};

/// Parses "MAJOR.MINOR" of 3 to 15 characters; std::nullopt for anything else.
std::optional<ContentVersion> ParseContentVersion(std::string_view text);

} // namespace vantor
