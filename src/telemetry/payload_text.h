// The text of the body that a pulse posts: {"ci":{...},"rpt":{"vantor":"..."}}.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vantor {

/// Who reports: the members of the "ci" object, as UTF-8. Values are written without escaping.
struct ClientIdentification {
    std::string affid;
    std::string cid;
    std::string cliid;
    std::string xpoid;               ///< management console; exactly "0" leaves the member out
    std::string prn;                 ///< product name
    std::string pv;                  ///< product version
    std::string rid;                 ///< request id, a decimal number
    std::string readOnlyMarker;      ///< exactly "1" adds "ro":true
    std::optional<std::string> sdkv; ///< client name; if missing, "<null>" is written
};

/// The "ci" object with the outer object opened before it and left open, without blanks.
std::string CiSectionText(const ClientIdentification& client);

/// The section, the "rpt" object with the report as Base64 text, and the end of the outer object.
std::string PostDataText(std::string_view ciSection, std::string_view reportBase64);

} // namespace vantor
