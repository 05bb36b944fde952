// Lower-casing names for comparisons that ignore case.
#pragma once

#include <string>

namespace vantor {

/// The text with its ASCII letters in lower case; other characters are unchanged.
template <typename Character>
std::basic_string<Character> LowerCase(std::basic_string<Character> text)
{
    for (Character& c : text) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<Character>(c - 'A' + 'a');
        }
    }
    return text;
}

} // namespace vantor
