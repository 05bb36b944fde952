#include "telemetry/request/pem.h"

namespace vantor {

std::vector<std::string_view> SplitPem(std::string_view pem)
{
    constexpr std::string_view kBegin = "-----BEGIN CERTIFICATE-----";
    constexpr std::string_view kEnd = "-----END CERTIFICATE-----";

    std::vector<std::string_view> certificates;
    for (std::size_t position = pem.find(kBegin); position != std::string_view::npos;
         position = pem.find(kBegin, position)) {
        position += kBegin.size();
        const std::size_t end = pem.find(kEnd, position);
        if (end == std::string_view::npos) {
            break;
        }
        certificates.push_back(pem.substr(position, end - position));
        position = end + kEnd.size();
    }
    return certificates;
}

} // namespace vantor
