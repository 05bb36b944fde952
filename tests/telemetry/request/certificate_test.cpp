#include "telemetry/request/certificate.h"

#include "support/recording_logger.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

/// Something that is no certificate, and one that names neither subject nor issuer.
constexpr char kPem[] =
    "-----BEGIN CERTIFICATE-----AAAA-----END CERTIFICATE-----\n-----BEGIN CERTIFICATE-----\n"
    "MIH7MIGjAhQmhDzCHWeFWTj4ATyDAXOXevKPbjAKBggqhkjOPQQDAjAAMCAXDTI2MTEyMjA0MDEzN1oYDzIxMjYxMDI5MDQwMTM3"
    "WjAAMFkwEwYHKoZIzj0CAQYIKoZIzj0DAQcDQgAEfEgMkw7QTlcyceOo1pfiqyzCexSBj2MX+++aH/vs/IyzJkYS+0/T8ZuRHKzU"
    "N2SlZaGWkgHh2WCkHxNObO28KjAKBggqhkjOPQQDAgNHADBEAiBEXJut1qGuTMhruD55pjDmzIpdGlCVHxcDxWN5j/t22QIgC9Ut"
    "qa50D6qBX7Z3Ck3YKWKwIKWkfi/Qoodw+08YB+Y="
    "\n-----END CERTIFICATE-----\n";

TEST(Certificate, WhatItLacksIsLogged)
{
    const auto log = std::make_shared<RecordingLogger>();
    const OperationLog operation(log, "X");
    const std::vector<Certificate> certificates = ParseCertificates(kPem, operation);
    ASSERT_EQ(certificates.size(), 1u);
    LogVriInfo(certificates[0].Get(), operation);
    ASSERT_EQ(log->lines.size(), 5u);
    EXPECT_TRUE(log->lines[0].starts_with("E X: Unable to decode certificate 1: error ")) << log->lines[0];
    log->lines.erase(log->lines.begin());
    EXPECT_EQ(log->lines,
              (std::vector<std::string>{"T X: Unable to get certificate subject / certificate has empty subject.",
                                        "T X: Unable to get certificate issuer / certificate has empty issuer.",
                                        "T X: Certificate Valid From: 2026-11-22 04:01:37",
                                        "T X: Certificate Expires On: 2126-10-29 04:01:37"}));
}

} // namespace
} // namespace vantor
