// The answer to a posted pulse, with whatever fault is asked for.
#pragma once

#include "receiver/behaviour.h"

#include <httplib.h>

namespace vantor::receiver {

/// Turns a response that is ready to be sent into the one that the behaviour asks for. Pauses and cuts happen on the
/// connection of the request; every pause ends when the client or Receiver::Stop closes it.
void InjectFault(const Behaviour& behaviour, const SSL* connection, httplib::Response& response);

} // namespace vantor::receiver
