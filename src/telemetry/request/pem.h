// PEM text, in which the pinned certificates are carried.
#pragma once

#include <string_view>
#include <vector>

namespace vantor {

/// The Base64 text between each "-----BEGIN CERTIFICATE-----" and the "-----END CERTIFICATE-----" that follows it, in
/// order, as views into pem. A beginning without an end is left out.
std::vector<std::string_view> SplitPem(std::string_view pem);

} // namespace vantor
