#include "inspect/printable_text.h"

namespace vantor::inspect {

std::string PrintableText(std::string_view text, std::size_t limitBytes)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string printable;
    for (const char character : text.substr(0, limitBytes)) {
        if (character >= ' ' && character <= '~') {
            printable += character;
        } else {
            const auto byte = static_cast<unsigned char>(character);
            printable.append("\\x").append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 0xF]);
        }
    }
    return text.size() > limitBytes ? printable + "..." : printable;
}

} // namespace vantor::inspect
