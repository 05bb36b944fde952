// The local receiver inside the test.
#pragma once

#include "receiver/receiver.h"

#include <string>

namespace vantor::e2e {

/// A receiver that the program takes for the real one, with a certificate of the local authority.
class LocalReceiver : public receiver::Receiver {
public:
    explicit LocalReceiver(const std::string& certificate = "server-a", std::uint16_t port = 8000)
        : Receiver(
              {VANTOR_PKI_DIRECTORY "/" + certificate + ".pem", VANTOR_PKI_DIRECTORY "/" + certificate + ".key", port})
    {
        Start();
    }
};

} // namespace vantor::e2e
