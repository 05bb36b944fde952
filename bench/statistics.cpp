#include "statistics.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace vantor::bench {

double Quantile(std::vector<double> values, double share)
{
    if (values.empty()) {
        return 0;
    }
    std::sort(values.begin(), values.end());
    const double place = share * static_cast<double>(values.size() - 1);
    const auto below = static_cast<std::size_t>(place);
    const std::size_t above = std::min(below + 1, values.size() - 1);
    return std::lerp(values[below], values[above], place - static_cast<double>(below));
}

std::string RatioText(const std::vector<double>& values, const std::vector<double>& baseline)
{
    std::vector<double> ratios;
    for (std::size_t pair = 0; pair < std::min(values.size(), baseline.size()); ++pair) {
        if (baseline[pair] > 0) {
            ratios.push_back(values[pair] / baseline[pair]);
        }
    }
    char text[64];
    std::snprintf(text, sizeof(text), "%.2f (%.2f to %.2f)", Quantile(ratios, 0.5), Quantile(ratios, 0.25),
                  Quantile(ratios, 0.75));
    return text;
}

} // namespace vantor::bench
