// The receiver's connections below HTTP: why one failed, and how to end them all.
#pragma once

#include <cstdint>
#include <string>

namespace vantor::receiver {

/// The first error in OpenSSL's queue for this thread as text, or `otherwise` if it is empty. Later errors in the queue
/// only follow from the first.
std::string FirstSslError(const char* otherwise);

/// Shuts down every socket of this process with this local port, even while another thread uses it.
void ShutDownConnections(std::uint16_t port);

} // namespace vantor::receiver
