#include "service/loopback_server.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace vantor::service {
namespace {

constexpr int kBacklog = 512;
constexpr int kPortTries = 20;
constexpr int kPauseMs = 20;

[[noreturn]] void ThrowLastError(const char* call)
{
    throw std::system_error(errno, std::generic_category(), call);
}

template <typename Address>
Descriptor Listen(const Address& address)
{
    constexpr bool isV6 = std::is_same_v<Address, sockaddr_in6>;
    Descriptor listener(::socket(isV6 ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!listener) {
        ThrowLastError("socket");
    }
    // A port whose last connections are still fading away can be taken again; one that somebody listens on cannot.
    const int on = 1;
    ::setsockopt(listener.Get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if constexpr (isV6) {
        ::setsockopt(listener.Get(), IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof on);
    }
    if (::bind(listener.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        ThrowLastError("bind");
    }
    if (::listen(listener.Get(), kBacklog) != 0) {
        ThrowLastError("listen");
    }
    return listener;
}

Descriptor ListenV4(std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return Listen(address);
}

/// Gives none on a machine without IPv6.
Descriptor ListenV6(std::uint16_t port)
{
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_port = htons(port);
    address.sin6_addr = in6addr_loopback;
    try {
        return Listen(address);
    } catch (const std::system_error& error) {
        if (error.code().value() == EAFNOSUPPORT || error.code().value() == EADDRNOTAVAIL) {
            return Descriptor();
        }
        throw;
    }
}

std::uint16_t PortOf(const Descriptor& listener)
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (::getsockname(listener.Get(), reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        ThrowLastError("getsockname");
    }
    return ntohs(address.sin_port);
}

/// Listeners on one port. Of a port that the system chose, the IPv6 half may belong to somebody else: then another one.
std::vector<Descriptor> ListenOnLoopback(std::uint16_t port)
{
    for (int tries = 1;; ++tries) {
        std::vector<Descriptor> listeners;
        listeners.push_back(ListenV4(port));
        try {
            if (Descriptor v6 = ListenV6(PortOf(listeners.front()))) {
                listeners.push_back(std::move(v6));
            }
            return listeners;
        } catch (const std::system_error& error) {
            if (port != 0 || error.code().value() != EADDRINUSE || tries == kPortTries) {
                throw;
            }
        }
    }
}

} // namespace

LoopbackServer::LoopbackServer(Talk talk) : m_talk(std::move(talk)) {}

LoopbackServer::~LoopbackServer()
{
    Stop();
}

void LoopbackServer::Start(std::uint16_t port)
{
    Stop();
    m_stopEvent = Descriptor(::eventfd(0, EFD_CLOEXEC));
    if (!m_stopEvent) {
        ThrowLastError("eventfd");
    }
    m_listeners = ListenOnLoopback(port);
    m_port = PortOf(m_listeners.front());
    m_acceptor = std::thread(&LoopbackServer::AcceptUntilStopped, this);
}

void LoopbackServer::Stop()
{
    if (!m_acceptor.joinable()) {
        return;
    }
    ::eventfd_write(m_stopEvent.Get(), 1);
    m_acceptor.join();
    m_listeners.clear();
    {
        const std::lock_guard lock(m_mutex);
        for (Connection& connection : m_connections) {
            ShutDown(connection);
        }
    }
    for (Connection& connection : m_connections) {
        connection.thread.join();
    }
    m_connections.clear();
}

void LoopbackServer::AcceptUntilStopped()
{
    std::vector<pollfd> waits{{m_stopEvent.Get(), POLLIN, 0}};
    for (const Descriptor& listener : m_listeners) {
        waits.push_back({listener.Get(), POLLIN, 0});
    }
    while (waits.front().revents == 0) {
        if (::poll(waits.data(), waits.size(), -1) < 0) {
            continue;
        }
        JoinFinished();
        if (m_connections.size() >= 2 * kMostConnections) {
            Pause(); // until those that were shut down have left; who comes now waits in the queue
            continue;
        }
        for (std::size_t index = 1; index < waits.size(); ++index) {
            if (waits[index].revents != 0) {
                Accept(waits[index].fd);
            }
        }
    }
}

void LoopbackServer::Accept(int listener)
{
    Descriptor socket(::accept4(listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!socket) {
        // Out of descriptors, mostly: the connection still waits, and asking again at once would only spin.
        Pause();
        return;
    }
    ++m_connectionCount;
    const int on = 1;
    ::setsockopt(socket.Get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    const std::lock_guard lock(m_mutex);
    if (m_connections.size() >= kMostConnections) {
        ShutDownOldest();
    }
    Connection& connection = m_connections.emplace_back();
    connection.socket = std::move(socket);
    try {
        connection.thread = std::thread(&LoopbackServer::Serve, this, std::ref(connection));
    } catch (const std::system_error&) {
        m_connections.pop_back();
    }
}

void LoopbackServer::Pause() const
{
    pollfd stop{m_stopEvent.Get(), POLLIN, 0};
    ::poll(&stop, 1, kPauseMs);
}

void LoopbackServer::Serve(Connection& connection)
{
    const int socket = [&] {
        const std::lock_guard lock(m_mutex);
        return connection.socket.Get();
    }();
    try {
        m_talk(socket);
    } catch (const std::exception&) {
        // One connection that went wrong (out of memory, say) must not end the others.
    }
    const std::lock_guard lock(m_mutex);
    connection.socket = Descriptor();
    connection.finished = true;
}

/// Wakes the connection's thread, whatever it waits for. The mutex must be held: it keeps the socket open meanwhile.
void LoopbackServer::ShutDown(Connection& connection)
{
    connection.shutDown = true;
    if (connection.socket) {
        ::shutdown(connection.socket.Get(), SHUT_RDWR);
    }
}

void LoopbackServer::ShutDownOldest()
{
    const auto oldest = std::find_if(m_connections.begin(), m_connections.end(),
                                     [](const Connection& connection) { return !connection.shutDown; });
    if (oldest != m_connections.end()) {
        ShutDown(*oldest);
    }
}

void LoopbackServer::JoinFinished()
{
    std::list<Connection> finished;
    {
        const std::lock_guard lock(m_mutex);
        for (auto connection = m_connections.begin(); connection != m_connections.end();) {
            const auto next = std::next(connection);
            if (connection->finished) {
                finished.splice(finished.end(), m_connections, connection);
            }
            connection = next;
        }
    }
    for (Connection& connection : finished) {
        connection.thread.join();
    }
}

} // namespace vantor::service
