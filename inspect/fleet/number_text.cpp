#include "inspect/fleet/number_text.h"

#include <cstdio>

namespace vantor::fleet {

std::string Count(std::uint64_t number)
{
    std::string text = std::to_string(number);
    for (std::size_t place = text.size(); place > 3;) {
        place -= 3;
        text.insert(place, 1, ',');
    }
    return text;
}

std::string Percent(double share)
{
    const double percent = share * 100;
    const int digits = percent == 0 || percent >= 99.95 ? 0 : percent >= 10 ? 1 : percent >= 1 ? 2 : 3;
    return Decimal(percent, digits) + " %";
}

std::string Decimal(double number, int digits)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, number); // no program here leaves the locale "C"
    return text;
}

} // namespace vantor::fleet
