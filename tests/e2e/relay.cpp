#include "e2e/relay.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

namespace vantor::e2e {
namespace {

constexpr int kIdleTimeoutMs = 30'000;

/// Binds the socket to a port of this machine, or connects it; false when that fails.
bool CallWithPort(int (*call)(int, const sockaddr*, socklen_t), int socket, std::uint16_t port)
{
    const sockaddr_in address{AF_INET, htons(port), {htonl(INADDR_LOOPBACK)}, {}};
    return call(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

} // namespace

Relay::Relay(std::uint16_t port, std::vector<std::uint16_t> upstreams, std::size_t cutAfter, bool reset)
    : m_upstreams(std::move(upstreams)), m_cutAfter(cutAfter), m_reset(reset),
      m_listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    const int on = 1;
    ::setsockopt(m_listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (!CallWithPort(::bind, m_listener, port) || ::listen(m_listener, SOMAXCONN) != 0) {
        const std::system_error error(errno, std::generic_category(), "port " + std::to_string(port));
        ::close(m_listener);
        throw error;
    }
    m_thread = std::thread([this] {
        for (int client = 0; (client = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC)) >= 0; ++m_connections) {
            Pass(client, m_upstreams[std::min(m_connections, m_upstreams.size() - 1)]);
        }
    });
}

Relay::~Relay()
{
    Stop();
}

void Relay::Stop()
{
    if (m_thread.joinable()) {
        ::shutdown(m_listener, SHUT_RDWR); // which ends the waiting for a connection
        m_thread.join();
        ::close(m_listener);
    }
}

void Relay::Pass(int client, std::uint16_t upstream)
{
    const int server = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    std::array<pollfd, 2> ends = {pollfd{client, POLLIN, 0}, pollfd{server, POLLIN, 0}};
    std::array<char, 4096> bytes{};
    std::size_t passed = 0;
    bool isOpen = CallWithPort(::connect, server, upstream);
    while (isOpen && passed < m_cutAfter) {
        if (::poll(ends.data(), ends.size(), kIdleTimeoutMs) <= 0) {
            break;
        }
        const bool back = ends[1].revents != 0;
        const std::size_t most = back ? std::min(bytes.size(), m_cutAfter - passed) : bytes.size();
        const ssize_t size = ::recv(back ? server : client, bytes.data(), most, 0);
        if (!back) {
            m_turns.insert(passed);
        }
        isOpen = size > 0 &&
                 ::send(back ? client : server, bytes.data(), static_cast<std::size_t>(size), MSG_NOSIGNAL) == size;
        passed += back && isOpen ? static_cast<std::size_t>(size) : 0;
    }
    const linger noTime{m_reset, 0}; // so that closing resets
    ::setsockopt(client, SOL_SOCKET, SO_LINGER, &noTime, sizeof noTime);
    ::close(client);
    ::close(server);
}

} // namespace vantor::e2e
