// The description of the periodic task in the user's language.
#pragma once

#include <cstdint>
#include <string_view>

namespace vantor {

/// The task's description in the language with this identifier (as GetUserDefaultUILanguage returns it), or in US
/// English if there is none for exactly that identifier.
std::u16string_view TaskDescription(std::uint16_t language);

} // namespace vantor
