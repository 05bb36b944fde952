// Text from a stranger, made safe to show on a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vantor::inspect {

/// The text with every byte that is no printable ASCII character written as \xNN. Of a text longer than limitBytes only
/// the beginning is shown, with "..." behind it.
std::string PrintableText(std::string_view text, std::size_t limitBytes = std::string_view::npos);

} // namespace vantor::inspect
