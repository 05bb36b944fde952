#include "inspect/fleet/statistics.h"

#include <algorithm>
#include <cmath>

namespace vantor::fleet {

Interval WilsonInterval(std::uint64_t hits, std::uint64_t tries, double width)
{
    if (tries == 0) {
        return {};
    }
    const auto n = static_cast<double>(tries);
    const auto x = static_cast<double>(hits);
    const double square = width * width;
    const double centre = (x + square / 2) / (n + square);
    const double half = width / (n + square) * std::sqrt(x * (n - x) / n + square / 4);
    return {std::max(0.0, centre - half), std::min(1.0, centre + half)};
}

double Share(std::uint64_t hits, std::uint64_t tries)
{
    return tries == 0 ? 0 : static_cast<double>(hits) / static_cast<double>(tries);
}

} // namespace vantor::fleet
