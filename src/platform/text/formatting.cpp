#include "platform/text/formatting.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace vantor {

DateTime UtcDateTime(std::chrono::sys_seconds time)
{
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date{day};
    const std::chrono::hh_mm_ss clock{time - day};
    return {static_cast<int>(date.year()),
            static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())),
            static_cast<int>(clock.hours().count()),
            static_cast<int>(clock.minutes().count()),
            static_cast<int>(clock.seconds().count())};
}

std::string FormatTime(const DateTime& time, std::string_view layout)
{
    int rest[] = {time.year, time.month, time.day, time.hour, time.minute, time.second};
    std::string text(layout);
    for (std::size_t index = text.size(); index-- > 0;) { // backwards: the last digit of each number comes first
        if (const std::size_t field = kTimeLetters.find(text[index]); field != std::string_view::npos) {
            text[index] = static_cast<char>('0' + rest[field] % 10);
            rest[field] /= 10;
        }
    }
    return text;
}

std::string Hexadecimal(std::uint64_t number, std::size_t minDigits)
{
    char digits[2 * sizeof(number)];
    const char* const end = std::to_chars(digits, std::end(digits), number, 16).ptr;
    const auto count = static_cast<std::size_t>(end - digits);
    return std::string(std::max(minDigits, count) - count, '0') + std::string(digits, count);
}

} // namespace vantor
