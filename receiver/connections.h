// The connections of the receiver below HTTP: why one failed, and how all of them end.
#pragma once

#include <cstdint>
#include <string>

namespace vantor::receiver {

/// What OpenSSL says went wrong first on this thread, or `otherwise` when it says nothing. The errors behind the first
/// only repeat that it did.
std::string FirstSslError(const char* otherwise);

/// Shuts down every socket of this process that has this port on its own side, whatever is done with it now.
void ShutDownConnections(std::uint16_t port);

} // namespace vantor::receiver
