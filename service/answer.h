// The answer to a posted pulse, well-behaved or not.
#pragma once

#include "service/behaviour.h"

#include <httplib.h>

namespace vantor::service {

/// Turns a response that is ready into the one that the behaviour asks for. Waits and cuts on the socket that the
/// request came from; every wait ends when the peer or Stop closes the connection.
void Misbehave(const Behaviour& behaviour, int socket, httplib::Response& response);

} // namespace vantor::service
