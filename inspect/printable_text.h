// Makes untrusted text safe to show on a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vantor::inspect {

/// The text with every byte that is not a printable ASCII character written as \xNN. A text longer than limitBytes is
/// cut off there and ends with "...".
std::string PrintableText(std::string_view text, std::size_t limitBytes = std::string_view::npos);

} // namespace vantor::inspect
