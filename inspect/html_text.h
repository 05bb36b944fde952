// Text from a stranger, made safe to show in a browser.
#pragma once

#include <string>
#include <string_view>

namespace vantor::inspect {

/// The text as PrintableText, escaped for HTML, also within an attribute's value.
std::string HtmlText(std::string_view text);

} // namespace vantor::inspect
