// Listens on the loopback addresses and gives every connection a thread.
#pragma once

#include "service/descriptor.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <thread>
#include <vector>

namespace vantor::service {

/// Accepts connections to 127.0.0.1 and, where the machine has it, ::1, on one port. No descriptor passes to programs
/// that this process starts.
class LoopbackServer {
public:
    /// Talks on a connected, non-blocking socket until done, on a thread of its own. The socket stays the server's.
    /// When the server stops, the socket is shut down; the function must then return.
    using Talk = std::function<void(int socket)>;

    /// With so many connections at a time the oldest is shut down for every new one, so that neither a flood nor silent
    /// peers keep others out.
    static constexpr std::size_t kMostConnections = 128;

    explicit LoopbackServer(Talk talk);
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    /// Starts to listen; port 0 takes any that is free. Throws std::system_error with the error of the socket call.
    void Start(std::uint16_t port);

    /// Stops listening, shuts every connection down and waits for its thread. Does nothing when stopped.
    void Stop();

    /// The port of the latest Start.
    std::uint16_t Port() const { return m_port; }

    /// How many connections have been accepted since construction.
    std::size_t ConnectionCount() const { return m_connectionCount; }

private:
    struct Connection {
        Descriptor socket;
        std::thread thread;
        bool shutDown = false;
        bool finished = false;
    };

    void AcceptUntilStopped();
    void Accept(int listener);
    void Pause() const;
    void Serve(Connection& connection);
    void ShutDown(Connection& connection);
    void ShutDownOldest();
    void JoinFinished();

    const Talk m_talk;
    std::vector<Descriptor> m_listeners;
    Descriptor m_stopEvent;
    std::thread m_acceptor;
    std::mutex m_mutex; ///< guards the members of every connection but its thread
    std::list<Connection> m_connections;
    std::atomic<std::size_t> m_connectionCount = 0;
    std::atomic<std::uint16_t> m_port = 0;
};

} // namespace vantor::service
