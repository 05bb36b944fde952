#include "service/printable_text.h"

#include <algorithm>
#include <cstdint>

namespace vantor::service {
namespace {

/// The first character of a text: its code point, and how many bytes it takes. No character: size 0.
struct Character {
    std::uint32_t code = 0;
    std::size_t size = 0;
};

std::size_t SequenceSize(unsigned char lead)
{
    if (lead < 0x80) {
        return 1;
    }
    if (lead < 0xC2 || lead > 0xF4) {
        return 0;
    }
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

Character FirstCharacter(std::string_view text)
{
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t size = SequenceSize(lead);
    if (size == 0 || size > text.size()) {
        return {};
    }
    std::uint32_t code = size == 1 ? lead : lead & (0xFFU >> (size + 1));
    for (std::size_t index = 1; index < size; ++index) {
        const auto next = static_cast<unsigned char>(text[index]);
        if ((next & 0xC0) != 0x80) {
            return {};
        }
        code = code << 6 | (next & 0x3FU);
    }
    constexpr std::uint32_t kFirstCodes[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < kFirstCodes[size] || surrogate || code > 0x10FFFF ? Character{} : Character{code, size};
}

bool Shows(std::uint32_t code)
{
    struct Range {
        std::uint32_t first;
        std::uint32_t last;
    };
    // Controls, then what reverses, joins or hides the text around it.
    constexpr Range kHidden[] = {{0, 0x1F},        {0x7F, 0x9F},      {0xAD, 0xAD},     {0x61C, 0x61C},
                                 {0x200B, 0x200F}, {0x2028, 0x202E},  {0x2060, 0x206F}, {0xFEFF, 0xFEFF},
                                 {0xFFF9, 0xFFFB}, {0xE0000, 0xE0FFF}};
    return std::none_of(std::begin(kHidden), std::end(kHidden),
                        [code](Range range) { return range.first <= code && code <= range.last; });
}

void AppendEscaped(std::string& text, std::string_view bytes)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        text.append("\\x").append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 0xF]);
    }
}

} // namespace

std::string PrintableText(std::string_view text, std::size_t limitBytes)
{
    std::string printable;
    for (std::size_t position = 0; position < text.size();) {
        const std::string_view rest = text.substr(position);
        const Character character = FirstCharacter(rest);
        const std::size_t size = std::max<std::size_t>(character.size, 1);
        if (position + size > limitBytes) {
            return printable + "...";
        }
        if (character.size != 0 && Shows(character.code)) {
            printable.append(rest.substr(0, size));
        } else {
            AppendEscaped(printable, rest.substr(0, size));
        }
        position += size;
    }
    return printable;
}

} // namespace vantor::service
