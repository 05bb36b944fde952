// A body as a client writes it, for the tests of the receiver.
#pragma once

#include "telemetry/payload_text.h"

#include <string>
#include <string_view>

namespace vantor::inspect {

/// A record: postdatupdate, content version unknown, 120 MiB of vxshield.exe, msedge, vxshield, dat_update_ok and ipv6.
inline constexpr char kPostUpdateReport[] = "DgIKAAAAAABlSgEBAgMEAAX/////AQAOKwAAAAAAAAAMAAAYARAAAAAAAABkhg==";

/// predatupdate with the text items A and B; then the next build of Windows, no ipv6 but bit 63, the items B and C.
inline constexpr char kEarlyReport[] = "DgEKAAAAAABlSgEBAgMEAAX/////AQAOKwAAAAAAAAAMAAAYARAAAAAAAABkhgQAQQBCAA==";
inline constexpr char kLaterReport[] = "DgEKAAAAAABmSgEBAgMEAAX/////AQAOKwAAAAAAAAAMAAAYAQAAAACAAABkhgQAQgBDAA==";

inline std::string SampleBody(std::string_view report = kPostUpdateReport)
{
    const ClientIdentification client{
        "0", "c-1", "h-1", "x-1", "VANTor-EPV", "1.0.14", "-5", "1", "VXCore REST Client"};
    return PostDataText(CiSectionText(client), report);
}

} // namespace vantor::inspect
