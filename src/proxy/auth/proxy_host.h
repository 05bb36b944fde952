// What the proxy manager shares with its sessions and authentication schemes.
#pragma once

#include "proxy/calls/proxy_calls.h"
#include "proxy/config/proxy_config.h"
#include "run/log/logger.h"
#include "telemetry/request/http_request.h"
#include "telemetry/winhttp/http_interface.h"

#include <memory>
#include <string>

namespace vantor {

struct ProxyHost {
    std::shared_ptr<IHTTP> http; ///< may be null; then no session or scheme is called
    ProxyCalls calls;
    std::shared_ptr<ILogger> logger; ///< may be null
    std::wstring userAgent;
    ProxyConfig config = {};

    /// Sets the configured proxy user name and password on the request for one WINHTTP_AUTH_SCHEME_ value.
    bool SetCredentials(DWORD authScheme, HttpRequest& request) const;
};

} // namespace vantor
