#include "health/record/content_version.h"

#include "health/record/dotted_version.h"

namespace vantor {

std::optional<ContentVersion> ParseContentVersion(std::string_view text)
{
    constexpr std::size_t kMaxLength = 15;

    if (text.size() > kMaxLength) {
        return std::nullopt;
    }
    const auto parts = ParseDottedVersion(text);
    if (!parts || parts->size() != 2) {
        return std::nullopt;
    }
    return ContentVersion{(*parts)[0], (*parts)[1]};
}

} // namespace vantor
