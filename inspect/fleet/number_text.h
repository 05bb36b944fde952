// Numbers as people read them.
#pragma once

#include <cstdint>
#include <string>

namespace vantor::fleet {

/// Such as "1,234,567".
std::string Count(std::uint64_t number);

/// Such as "12.3 %" and "0.012 %": three digits, or as many as the share has.
std::string Percent(double share);

/// With so many digits behind the point, whatever the locale.
std::string Decimal(double number, int digits);

} // namespace vantor::fleet
