// Points in time as text, in UTC, without the C library's calendar, which differs between systems.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace vantor::inspect {

/// How a time is laid out: each Y, M, D, h, m, s stands for a digit of its number, every other character for itself. A
/// year of two digits lies in this century.
inline constexpr std::string_view kReadableTime = "YYYY-MM-DD hh:mm:ss";
inline constexpr std::string_view kIsoTime = "YYYY-MM-DDThh:mm:ssZ";
inline constexpr std::string_view kClockTime = "hh:mm:ss";
inline constexpr std::string_view kLogTime = "YY/MM/DD hh:mm:ss";

std::string FormatUtc(std::chrono::sys_seconds time, std::string_view layout);

/// Reads the whole text; nothing when it is laid out otherwise or names no time.
std::optional<std::chrono::sys_seconds> ParseUtc(std::string_view text, std::string_view layout);

} // namespace vantor::inspect
