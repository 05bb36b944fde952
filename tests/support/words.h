// A text's words.
#pragma once

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace vantor {

inline std::vector<std::string> Words(const std::string& text)
{
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

} // namespace vantor
