#include "health/record/dotted_version.h"

namespace vantor {

std::optional<std::vector<std::uint16_t>> ParseDottedVersion(std::string_view text)
{
    std::vector<std::uint16_t> parts;
    bool inPart = false;
    for (const char c : text) {
        if (c == '.') {
            if (!inPart) {
                return std::nullopt;
            }
            inPart = false;
        } else if (c >= '0' && c <= '9') {
            if (!inPart) {
                parts.push_back(0);
                inPart = true;
            }
            // Only the low 16 bits are kept, so that no number of digits can overflow.
            parts.back() = static_cast<std::uint16_t>(parts.back() * 10U + static_cast<unsigned>(c - '0'));
        } else {
            return std::nullopt;
        }
    }
    if (!inPart) {
        return std::nullopt;
    }
    return parts;
}

} // namespace vantor
