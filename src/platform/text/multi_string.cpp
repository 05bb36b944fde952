#include "platform/text/multi_string.h"

#include <algorithm>
#include <string>

namespace vantor {

bool MultiStringContains(std::span<const std::uint8_t> data, std::u16string_view entry)
{
    std::u16string text(data.size() / 2, u'\0');
    for (std::size_t index = 0; index < text.size(); ++index) {
        text[index] = static_cast<char16_t>(data[2 * index] | data[2 * index + 1] << 8);
    }
    for (auto begin = text.begin(); begin != text.end();) {
        const auto end = std::find(begin, text.end(), u'\0');
        if (std::equal(begin, end, entry.begin(), entry.end())) {
            return true;
        }
        begin = end == text.end() ? end : end + 1;
    }
    return false;
}

} // namespace vantor
