// Formats and parses times in UTC without the C library's calendar, which differs between systems.
#pragma once

#include "platform/text/formatting.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace vantor::inspect {

// More layouts for FormatTime.
inline constexpr std::string_view kIsoTime = "YYYY-MM-DDThh:mm:ssZ";
inline constexpr std::string_view kClockTime = "hh:mm:ss";

std::string FormatUtc(std::chrono::sys_seconds time, std::string_view layout);

/// Parses the whole text; std::nullopt if it does not match the layout or is not a valid time. A two-digit year is in
/// this century.
std::optional<std::chrono::sys_seconds> ParseUtc(std::string_view text, std::string_view layout);

} // namespace vantor::inspect
