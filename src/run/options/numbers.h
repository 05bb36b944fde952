// Decimal numbers in option values.
#pragma once

#include "run/options/option_error.h"

#include <cstdint>
#include <string_view>

namespace vantor {

/// Converts a text of digits to a number from 0 to maximum. Throws OptionError otherwise. "Covert" in the messages is
/// kept for the people who know and search for them.
std::uint64_t ConvertToUnsigned(std::string_view text, std::uint64_t maximum);

/// Converts a text of digits, with a minus sign before them if negative, to a number from minimum to maximum. Throws
/// OptionError otherwise.
std::int64_t ConvertToSigned(std::string_view text, std::int64_t minimum, std::int64_t maximum);

} // namespace vantor
