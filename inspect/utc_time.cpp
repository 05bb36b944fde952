#include "inspect/utc_time.h"

#include <array>

namespace vantor::inspect {
namespace {

constexpr std::string_view kFields = "YMDhms";
using Numbers = std::array<int, kFields.size()>;

} // namespace

std::string FormatUtc(std::chrono::sys_seconds time, std::string_view layout)
{
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date{day};
    const std::chrono::hh_mm_ss clock{time - day};
    Numbers rest{static_cast<int>(date.year()),
                 static_cast<int>(static_cast<unsigned>(date.month())),
                 static_cast<int>(static_cast<unsigned>(date.day())),
                 static_cast<int>(clock.hours().count()),
                 static_cast<int>(clock.minutes().count()),
                 static_cast<int>(clock.seconds().count())};
    std::string text(layout);
    for (std::size_t index = text.size(); index-- > 0;) { // a number's last digit first
        if (const std::size_t field = kFields.find(text[index]); field != std::string_view::npos) {
            text[index] = static_cast<char>('0' + rest[field] % 10);
            rest[field] /= 10;
        }
    }
    return text;
}

std::optional<std::chrono::sys_seconds> ParseUtc(std::string_view text, std::string_view layout)
{
    using namespace std::chrono;
    if (text.size() != layout.size()) {
        return std::nullopt;
    }
    Numbers numbers{};
    for (std::size_t index = 0; index < text.size(); ++index) {
        const std::size_t field = kFields.find(layout[index]);
        if (field == std::string_view::npos ? text[index] != layout[index] : text[index] < '0' || text[index] > '9') {
            return std::nullopt;
        }
        if (field != std::string_view::npos) {
            numbers[field] = numbers[field] * 10 + (text[index] - '0');
        }
    }
    const auto [y, mo, d, h, mi, s] = numbers;
    const year_month_day date{year{y < 100 ? 2000 + y : y}, month{static_cast<unsigned>(mo)},
                              day{static_cast<unsigned>(d)}};
    if (!date.ok() || h > 23 || mi > 59 || s > 60) {
        return std::nullopt;
    }
    return sys_days{date} + hours{h} + minutes{mi} + seconds{s};
}

} // namespace vantor::inspect
