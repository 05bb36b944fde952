#include "service/base64.h"

namespace vantor::service {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t kGroupSize = 4;

std::string_view WithoutPadding(std::string_view text)
{
    for (int count = 0; count < 2 && text.ends_with('='); ++count) {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace

std::optional<std::vector<std::uint8_t>> DecodeBase64(std::string_view text)
{
    if (text.size() % kGroupSize != 0) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / kGroupSize * 3);
    std::uint32_t pending = 0;
    unsigned pendingBits = 0;
    for (const char character : WithoutPadding(text)) {
        const std::size_t digit = kAlphabet.find(character);
        if (digit == std::string_view::npos) {
            return std::nullopt;
        }
        pending = pending << 6 | static_cast<std::uint32_t>(digit);
        pendingBits += 6;
        if (pendingBits >= 8) {
            pendingBits -= 8;
            bytes.push_back(static_cast<std::uint8_t>(pending >> pendingBits));
            pending &= (1U << pendingBits) - 1;
        }
    }
    if (pending != 0) {
        return std::nullopt;
    }
    return bytes;
}

} // namespace vantor::service
