// The pinned issuer certificates of the reputation service, set at build time.
#pragma once

#include <string_view>

namespace vantor {

/// PEM text; empty in a build without pinned issuers, which trusts no server.
std::string_view PinnedIssuersPem();

} // namespace vantor
