// The receiver's connections below HTTP: finding out why one failed, and closing them all.
#pragma once

#include <cstdint>
#include <string>

namespace vantor::receiver {

/// The first error in OpenSSL's queue for this thread as text, or `otherwise` if the queue is empty. Later errors in
/// the queue are only consequences of the first.
std::string FirstSslError(const char* otherwise);

/// Shuts down all sockets of this process with this local port, even if other threads are using them.
void ShutDownConnections(std::uint16_t port);

} // namespace vantor::receiver
