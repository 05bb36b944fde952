// Times and hexadecimal numbers as text.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vantor {

/// A date and a time of day in any time zone.
struct DateTime {
    int year = 0;
    int month = 0; ///< 1 to 12
    int day = 0;   ///< 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
};

DateTime UtcDateTime(std::chrono::sys_seconds time);

/// Layouts for FormatTime: each of these letters stands for one digit of year, month, day, hour, minute, second; every other
/// character is copied.
inline constexpr std::string_view kTimeLetters = "YMDhms";
inline constexpr std::string_view kLogTime = "YY/MM/DD hh:mm:ss";
inline constexpr std::string_view kReadableTime = "YYYY-MM-DD hh:mm:ss";
std::string FormatTime(const DateTime& time, std::string_view layout);

/// The number in lower-case hexadecimal without "0x", padded with zeros to at least minDigits digits.
std::string Hexadecimal(std::uint64_t number, std::size_t minDigits = 1);

} // namespace vantor
