// Injects faults into the answer to a posted pulse.
#pragma once

#include "receiver/behaviour.h"

#include <httplib.h>

namespace vantor::receiver {

/// Turns a response that is ready to be sent into the one that the behaviour asks for. Pauses and cuts affect the
/// request's connection; every pause ends when the client or Receiver::Stop closes it.
void InjectFault(const Behaviour& behaviour, const SSL* connection, httplib::Response& response);

} // namespace vantor::receiver
