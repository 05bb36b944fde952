// The choice and order of the authentication schemes to try.
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

/// WINHTTP_AUTH_SCHEME_ values, indexed by product scheme value (ProxyAuthScheme).
inline constexpr std::array<DWORD, 5> kMsSchemes = {0, WINHTTP_AUTH_SCHEME_BASIC, WINHTTP_AUTH_SCHEME_NTLM,
                                                    WINHTTP_AUTH_SCHEME_NTLM, WINHTTP_AUTH_SCHEME_NEGOTIATE};

/// A configured scheme paired with one that the proxy offers.
struct SchemeMatch {
    DWORD offered;            ///< a single WINHTTP_AUTH_SCHEME_ bit
    std::uint32_t configured; ///< product scheme value
    bool isMatch;
};

/// For each bit of the mask, all configured schemes in order. A scheme matches if its WinHTTP value shares a bit with
/// the whole mask, so each match is repeated for each bit; the repetitions are part of the negotiation.
std::vector<SchemeMatch> MatchSchemes(std::span<const std::uint32_t> configured, DWORD mask);

/// The schemes to start with: a single configured scheme is tried at once; with several, the first attempt uses none,
/// because the proxy's answer decides their order.
std::list<std::uint32_t> FirstSchemes(std::span<const std::uint32_t> configured);

} // namespace vantor
