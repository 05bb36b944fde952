// Certificate contexts: reading them from PEM text, checking their issuer and logging them.
#pragma once

#include "platform/modules/crypt32.h"
#include "platform/owner.h"
#include "run/log/operation_log.h"

#include <windows.h>

#include <wincrypt.h>

#include <span>
#include <string_view>
#include <vector>

namespace vantor {

struct CertificatePolicy {
    using Value = PCCERT_CONTEXT;
    static Value None() noexcept { return nullptr; }
    static void Release(Value value) noexcept { crypt32::CertFreeCertificateContext(value); }
};

/// A certificate context, freed with CertFreeCertificateContext.
using Certificate = Owner<CertificatePolicy>;

/// The certificates in a PEM text, in order (CryptStringToBinaryA, CertCreateCertificateContext). One that cannot be
/// decoded is logged and skipped.
std::vector<Certificate> ParseCertificates(std::string_view pem, const OperationLog& log);

/// The first issuer whose key verifies the certificate's signature (CryptVerifyCertificateSignature), or null.
/// Names, dates and chains are not checked.
PCCERT_CONTEXT FindIssuer(PCCERT_CONTEXT certificate, std::span<const Certificate> issuers);

/// Logs a certificate's subject, issuer and validity period, with times as "YYYY-MM-DD HH:MM:SS" UTC.
void LogVriInfo(PCCERT_CONTEXT certificate, const OperationLog& log);

} // namespace vantor
