// The local authority's certificates.
#pragma once

#include "telemetry/certificate.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace vantor {

/// The certificates of a PEM file of the local authority, such as "issuer-a".
inline std::vector<Certificate> LoadCertificates(const std::string& name)
{
    std::ifstream file(std::string(VANTOR_PKI_DIRECTORY "/") + name + ".pem", std::ios::binary);
    const std::string pem(std::istreambuf_iterator<char>(file), {});
    std::vector<Certificate> certificates = ParseCertificates(pem, OperationLog(nullptr, ""));
    EXPECT_FALSE(certificates.empty()) << name;
    return certificates;
}

} // namespace vantor
