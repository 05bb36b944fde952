// A relay before the receiver, for what goes wrong on the way to it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <thread>
#include <vector>

namespace vantor::e2e {

/// Listens on a port of this machine and passes the bytes of one connection after the other on as they are.
class Relay {
public:
    /// Of the upstream ports the next one answers each connection, and the last all further ones. A connection is
    /// closed, by a reset if that is asked for, once so many bytes have gone to its client. Throws std::system_error.
    Relay(std::uint16_t port, std::vector<std::uint16_t> upstreams, std::size_t cutAfter = SIZE_MAX,
          bool reset = false);
    ~Relay();
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    /// Takes no more connections, and waits for the end of the current one, half a minute of silence at the most.
    void Stop();

    /// How many connections there were; to be asked when stopped.
    std::size_t Connections() const { return m_connections; }

    /// How many bytes a client had got whenever it sent some, or closed; to be asked when stopped.
    const std::set<std::size_t>& Turns() const { return m_turns; }

private:
    void Pass(int client, std::uint16_t upstream);

    const std::vector<std::uint16_t> m_upstreams;
    const std::size_t m_cutAfter;
    const bool m_reset;
    int m_listener;
    std::size_t m_connections = 0;
    std::set<std::size_t> m_turns;
    std::thread m_thread;
};

} // namespace vantor::e2e
