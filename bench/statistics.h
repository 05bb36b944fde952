// Figures of paired runs.
#pragma once

#include <string>
#include <vector>

namespace vantor::bench {

/// The values' quantile, interpolated between neighbours; share 0.5 gives the median. 0 if there are no values.
double Quantile(std::vector<double> values, double share);

/// "1.08 (1.02 to 1.15)": the median of the pairs' ratios and their quartiles. Pairs without a divisor are left out.
std::string RatioText(const std::vector<double>& values, const std::vector<double>& baseline);

} // namespace vantor::bench
