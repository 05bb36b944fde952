// Which authentication schemes are tried, and in which order.
#pragma once

#include "proxy/config/proxy_config.h"

#include <windows.h>

#include <winhttp.h>

#include <array>
#include <cstdint>
#include <list>
#include <span>
#include <vector>

namespace vantor {

/// WINHTTP_AUTH_SCHEME_ values by product scheme value (ProxyAuthScheme).
inline constexpr std::array<DWORD, 5> kMsSchemes = {0, WINHTTP_AUTH_SCHEME_BASIC, WINHTTP_AUTH_SCHEME_NTLM,
                                                    WINHTTP_AUTH_SCHEME_NTLM, WINHTTP_AUTH_SCHEME_NEGOTIATE};

/// A configured scheme beside one that the proxy offers.
struct SchemeMatch {
    DWORD offered;            ///< a single WINHTTP_AUTH_SCHEME_ bit
    std::uint32_t configured; ///< product scheme value
    bool isMatch;
};

/// For each bit of the mask, every configured scheme in its order. A match is one whose WinHTTP value shares a bit
/// with the whole mask, so each match comes once for each bit; the repetitions are part of the negotiation.
std::vector<SchemeMatch> MatchSchemes(std::span<const std::uint32_t> configured, DWORD mask);

/// What to begin with: a single configured scheme; of several none, for the proxy's answer tells their order.
std::list<std::uint32_t> FirstSchemes(std::span<const std::uint32_t> configured);

} // namespace vantor
