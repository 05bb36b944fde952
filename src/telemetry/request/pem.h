// PEM text, the format of the pinned certificates.
#pragma once

#include <string_view>
#include <vector>

namespace vantor {

/// The Base64 text between each "-----BEGIN CERTIFICATE-----" and the "-----END CERTIFICATE-----" that follows it, in
/// order, as views into pem. A certificate without an end line is skipped.
std::vector<std::string_view> SplitPem(std::string_view pem);

} // namespace vantor
