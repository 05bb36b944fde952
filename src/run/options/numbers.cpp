#include "run/options/numbers.h"

#include <charconv>
#include <system_error>

namespace vantor {
namespace {

template <typename Number>
Number Convert(std::string_view text, const char* invalid, const char* outOfRange)
{
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc::result_out_of_range) {
        throw OptionError(outOfRange);
    }
    if (error != std::errc{} || stop != end) {
        throw OptionError(invalid);
    }
    return number;
}

} // namespace

std::uint64_t ConvertToUnsigned(std::string_view text, std::uint64_t maximum)
{
    if (text.find_first_not_of("0123456789") != std::string_view::npos) {
        throw OptionError("Non digit in CovertToUnsigned");
    }
    const auto number = Convert<std::uint64_t>(text, "invalid stoull argument", "stoull argument out of range");
    if (number > maximum) {
        throw OptionError("Overflow in CovertToUnsigned");
    }
    return number;
}

std::int64_t ConvertToSigned(std::string_view text, std::int64_t minimum, std::int64_t maximum)
{
    if (text.find_first_not_of("-0123456789") != std::string_view::npos) {
        throw OptionError("Non digit in CovertToSigned");
    }
    const auto number = Convert<std::int64_t>(text, "invalid stoll argument", "stoll argument out of range");
    if (number < minimum) {
        throw OptionError("Underflow in CovertToSigned");
    }
    if (number > maximum) {
        throw OptionError("Overflow in CovertToSigned");
    }
    return number;
}

} // namespace vantor
