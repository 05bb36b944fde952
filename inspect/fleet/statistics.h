// What a count says about the share behind it.
#pragma once

#include <cstdint>

namespace vantor::fleet {

struct Interval {
    double low = 0;
    double high = 1;
};

/// How many standard errors the intervals of a report span to either side. A report compares some hundreds of shares, and
/// chance must make none of them stand out: at 4.5 it does so for one comparison in 100,000 at most, mostly far fewer.
inline constexpr double kIntervalWidth = 4.5;

/// Fewer hosts never make a version stand out, whatever their share.
inline constexpr std::uint64_t kMinNotableHosts = 10;

/// Wilson's score interval for the share of `hits` among `tries`; everything when nothing was tried.
Interval WilsonInterval(std::uint64_t hits, std::uint64_t tries, double width = kIntervalWidth);

/// hits / tries, or 0.
double Share(std::uint64_t hits, std::uint64_t tries);

} // namespace vantor::fleet
