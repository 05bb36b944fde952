// Settings of an HTTP connection: server, limits and timeouts.
#pragma once

#include <cstdint>
#include <string>

namespace vantor {

struct HttpConfig {
    std::wstring server; ///< host name
    std::uint16_t port = 0;
    std::wstring userAgent;
    std::uint64_t maxSize = 0; ///< largest body in bytes; 0: no limit
};

struct HttpTimeouts {
    std::uint32_t resolveTimeoutMillisec = 0;
    std::uint32_t connectTimeoutMillisec = 0;
    std::uint32_t sendTimeoutMillisec = 0;
    std::uint32_t receiveTimeoutMillisec = 0;
};

} // namespace vantor
