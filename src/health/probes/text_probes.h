// The text items of a pre-update report.
#pragma once

#include <string>
#include <vector>

namespace vantor {

using TextItems = std::vector<std::string>;

/// Each probe returns one item for each value that it could read, unaltered, or the single item "Unavailable".

/// Versions of the enterprise product and its engine, then release name and version of the consumer product, both with
/// the prefix "HSQ_".
TextItems GetProductInfo();

/// The first processor's identifier.
TextItems GetCPUInfo();

/// The user-interface language as "0x%04x" (GetUserDefaultUILanguage).
TextItems GetOSLanguageInfo();

/// The ATP component's version, then its build number.
TextItems GetATPInfo();

/// The description of each display adapter. Subkeys of the adapter class without a description are skipped.
TextItems GetGPUInfo();

/// The items of all probes, in the order above.
TextItems CollectTextItems();

} // namespace vantor
