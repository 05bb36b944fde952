#include "inspect/utc_time.h"

#include <array>

namespace vantor::inspect {
namespace {

using Numbers = std::array<int, kTimeLetters.size()>;

} // namespace

std::string FormatUtc(std::chrono::sys_seconds time, std::string_view layout)
{
    return FormatTime(UtcDateTime(time), layout);
}

std::optional<std::chrono::sys_seconds> ParseUtc(std::string_view text, std::string_view layout)
{
    using namespace std::chrono;
    if (text.size() != layout.size()) {
        return std::nullopt;
    }
    Numbers numbers{};
    for (std::size_t index = 0; index < text.size(); ++index) {
        const std::size_t field = kTimeLetters.find(layout[index]);
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
