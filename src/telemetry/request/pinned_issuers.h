// The issuing certificates of the reputation service that this build was given.
#pragma once

#include <string_view>

namespace vantor {

/// PEM text; empty in a build without pinned issuers, which then trusts no server.
std::string_view PinnedIssuersPem();

} // namespace vantor
