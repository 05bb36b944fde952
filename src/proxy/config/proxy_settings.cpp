#include "proxy/config/proxy_settings.h"

namespace vantor {
namespace {

bool HasScheme(const std::string& server)
{
    return server.starts_with("http://") || server.starts_with("https://");
}

bool IsIpv6Literal(const std::string& server)
{
    return server.find(':') != std::string::npos && !server.starts_with('[');
}

} // namespace

bool HasExplicitProxy(const RunConfig& config)
{
    return config.port != 0 && !config.server.empty();
}

std::string ProxyAddress(const RunConfig& config)
{
    const bool inBrackets = !HasScheme(config.server) && IsIpv6Literal(config.server);
    const std::string host = inBrackets ? "[" + config.server + "]" : config.server;
    return host + ":" + std::to_string(config.port);
}

std::string ProxyUserName(const RunConfig& config)
{
    const std::string& name = config.username.empty() ? config.principal : config.username;
    if (config.domain.empty() || name.empty() || name.find_first_of("\\@") != std::string::npos) {
        return name;
    }
    return config.domain + "\\" + name;
}

} // namespace vantor
