#include "proxy/auth/scheme_choice.h"

namespace vantor {

std::vector<SchemeMatch> MatchSchemes(std::span<const std::uint32_t> configured, DWORD mask)
{
    std::vector<SchemeMatch> matches;
    for (DWORD bit = 1; bit != 0; bit <<= 1) {
        for (const std::uint32_t value : (mask & bit) ? configured : std::span<const std::uint32_t>()) {
            matches.push_back({bit, value, value < kMsSchemes.size() && (kMsSchemes[value] & mask) != 0});
        }
    }
    return matches;
}

std::list<std::uint32_t> FirstSchemes(std::span<const std::uint32_t> configured)
{
    if (configured.empty()) {
        return {};
    }
    return {configured.size() == 1 ? configured.front() : REP_PROXY_AUTH_SCHEME_NONE};
}

} // namespace vantor
