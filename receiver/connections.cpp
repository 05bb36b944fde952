#include "receiver/connections.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/err.h>
#include <sys/socket.h>

#include <filesystem>
#include <system_error>

namespace vantor::receiver {

std::string FirstSslError(const char* otherwise)
{
    const unsigned long error = ::ERR_peek_error();
    if (ERR_SYSTEM_ERROR(error)) {
        return std::generic_category().message(ERR_GET_REASON(error));
    }
    const char* reason = ::ERR_reason_error_string(error);
    return reason == nullptr ? otherwise : reason;
}

void ShutDownConnections(std::uint16_t port)
{
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        const int descriptor = std::stoi(entry.path().filename());
        sockaddr_in address{};
        socklen_t size = sizeof address;
        if (::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size) == 0 &&
            address.sin_family == AF_INET && address.sin_port == htons(port)) {
            ::shutdown(descriptor, SHUT_RDWR);
        }
    }
}

} // namespace vantor::receiver
