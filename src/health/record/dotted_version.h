// Dotted versions such as "64.1.90.12345", from options and registry values.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vantor {

/// Splits a text of digits and single dots that neither begins nor ends with a dot into its parts; std::nullopt for any
/// other text. A part above 65,535 keeps its low 16 bits.
std::optional<std::vector<std::uint16_t>> ParseDottedVersion(std::string_view text);

} // namespace vantor
