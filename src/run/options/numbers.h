// Decimal numbers in option values.
#pragma once

#include "run/options/option_error.h"

#include <cstdint>
#include <string_view>

namespace vantor {

/// Converts decimal digits to a number from 0 to maximum. Throws OptionError otherwise. The misspelt "Covert" in the
/// messages is kept for the people who search for it.
std::uint64_t ConvertToUnsigned(std::string_view text, std::uint64_t maximum);

/// Converts decimal digits with an optional minus sign to a number from minimum to maximum. Throws OptionError
/// otherwise.
std::int64_t ConvertToSigned(std::string_view text, std::int64_t minimum, std::int64_t maximum);

} // namespace vantor
