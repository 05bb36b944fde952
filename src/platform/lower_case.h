// Names that are compared without regard to case.
#pragma once

#include <string>

namespace vantor {

/// The text with its ASCII letters in lower case; every other byte stays as it is.
inline std::string LowerCase(std::string text)
{
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return text;
}

} // namespace vantor
