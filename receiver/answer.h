// The answer to a posted pulse, well-behaved or not.
#pragma once

#include "receiver/behaviour.h"

#include <httplib.h>

namespace vantor::receiver {

/// Turns a response that is ready into the one that the behaviour asks for. Waits and cuts on the connection that the
/// request came from; every wait ends when the peer or Stop closes it.
void Misbehave(const Behaviour& behaviour, const SSL* connection, httplib::Response& response);

} // namespace vantor::receiver
