#include "inspect/base64.h"

#include <array>
#include <cstddef>

namespace vantor::inspect {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t kForeign = 0xFF;

/// The value of each byte as a character of the alphabet, or kForeign.
constexpr std::array<std::uint8_t, 256> CharacterValues()
{
    std::array<std::uint8_t, 256> values{};
    values.fill(kForeign);
    for (std::size_t value = 0; value < kAlphabet.size(); ++value) {
        values[static_cast<std::uint8_t>(kAlphabet[value])] = static_cast<std::uint8_t>(value);
    }
    return values;
}

constexpr std::array<std::uint8_t, 256> kValues = CharacterValues();

} // namespace

std::optional<std::vector<std::uint8_t>> DecodeBase64(std::string_view text)
{
    if (text.size() % 4 != 0) {
        return std::nullopt;
    }
    const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    text.remove_suffix(padding);

    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / 4 * 3 + 2);
    std::uint32_t pending = 0;
    unsigned pendingBits = 0;
    for (const char character : text) {
        const std::uint8_t value = kValues[static_cast<std::uint8_t>(character)];
        if (value == kForeign) {
            return std::nullopt;
        }
        pending = pending << 6 | value;
        pendingBits += 6;
        if (pendingBits >= 8) {
            pendingBits -= 8;
            bytes.push_back(static_cast<std::uint8_t>(pending >> pendingBits));
            pending &= (1U << pendingBits) - 1;
        }
    }
    return pending == 0 ? std::optional(std::move(bytes)) : std::nullopt;
}

} // namespace vantor::inspect
