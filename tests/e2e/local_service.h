// The local reputation service inside the test.
#pragma once

#include "service/reputation_service.h"

#include <string>

namespace vantor::e2e {

/// A service that the program takes for the real one, with a certificate of the local authority.
class LocalService : public service::ReputationService {
public:
    explicit LocalService(const std::string& certificate = "server-a", std::uint16_t port = 8000)
        : ReputationService(
              {VANTOR_PKI_DIRECTORY "/" + certificate + ".pem", VANTOR_PKI_DIRECTORY "/" + certificate + ".key", port})
    {
        Start();
    }
};

} // namespace vantor::e2e
