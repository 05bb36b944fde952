// Writes the body of a pulse: {"ci":{...},"rpt":{"vantor":"..."}}.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vantor {

/// The members of the "ci" object, in UTF-8. Values are written without escaping.
struct ClientIdentification {
    std::string affid;
    std::string cid;
    std::string cliid;
    std::string xpoid;               ///< management console id; exactly "0" omits the member
    std::string prn;                 ///< product name
    std::string pv;                  ///< product version
    std::string rid;                 ///< request id, a decimal number
    std::string readOnlyMarker;      ///< exactly "1" adds "ro":true
    std::optional<std::string> sdkv; ///< client name; "<null>" is written if it is missing
};

/// The opening brace of the body and its "ci" object, without blanks.
std::string CiSectionText(const ClientIdentification& client);

/// The complete body: the "ci" section, the "rpt" object with the report in Base64, and the closing brace.
std::string PostDataText(std::string_view ciSection, std::string_view reportBase64);

} // namespace vantor
