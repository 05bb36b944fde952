#include "telemetry/request/certificate.h"

#include "platform/modules/crypt32.h"
#include "platform/system_time.h"
#include "platform/text/encoding.h"
#include "telemetry/request/pem.h"

#include <string>

namespace vantor {
namespace {

Certificate DecodeCertificate(std::string_view base64)
{
    const auto length = static_cast<DWORD>(base64.size());
    DWORD size = 0;
    if (!crypt32::CryptStringToBinaryA(base64.data(), length, CRYPT_STRING_BASE64, nullptr, &size, nullptr, nullptr)) {
        return {};
    }
    std::vector<BYTE> der(size);
    if (!crypt32::CryptStringToBinaryA(base64.data(), length, CRYPT_STRING_BASE64, der.data(), &size, nullptr,
                                       nullptr)) {
        return {};
    }
    return Certificate(crypt32::CertCreateCertificateContext(X509_ASN_ENCODING, der.data(), size));
}

/// The certificate's subject or, with CERT_NAME_ISSUER_FLAG, its issuer; empty if it cannot be read.
std::string Name(PCCERT_CONTEXT certificate, DWORD flags)
{
    const DWORD size =
        crypt32::CertGetNameStringW(certificate, CERT_NAME_SIMPLE_DISPLAY_TYPE, flags, nullptr, nullptr, 0);
    std::wstring name(size, L'\0');
    const DWORD length =
        crypt32::CertGetNameStringW(certificate, CERT_NAME_SIMPLE_DISPLAY_TYPE, flags, nullptr, name.data(), size);
    name.resize(length > 0 ? length - 1 : 0); // both calls count the final NUL
    return ToNarrow(name);
}

void LogName(PCCERT_CONTEXT certificate, DWORD flags, const char* found, const char* missing, const OperationLog& log)
{
    const std::string name = Name(certificate, flags);
    log.Trace(name.empty() ? missing : found + name);
}

std::string TimeText(const FILETIME& time)
{
    SYSTEMTIME parts{};
    if (!::FileTimeToSystemTime(&time, &parts)) {
        return "unknown";
    }
    return FormatTime(ToDateTime(parts), kReadableTime);
}

} // namespace

std::vector<Certificate> ParseCertificates(std::string_view pem, const OperationLog& log)
{
    std::vector<Certificate> certificates;
    for (const std::string_view base64 : SplitPem(pem)) {
        Certificate certificate = DecodeCertificate(base64);
        if (!certificate) {
            const DWORD error = ::GetLastError();
            log.Error("Unable to decode certificate " + std::to_string(certificates.size() + 1) + ": error " +
                      std::to_string(error));
            continue;
        }
        certificates.push_back(std::move(certificate));
    }
    return certificates;
}

PCCERT_CONTEXT FindIssuer(PCCERT_CONTEXT certificate, std::span<const Certificate> issuers)
{
    for (const Certificate& issuer : issuers) {
        if (crypt32::CryptVerifyCertificateSignature(0, X509_ASN_ENCODING, certificate->pbCertEncoded,
                                                     certificate->cbCertEncoded,
                                                     &issuer.Get()->pCertInfo->SubjectPublicKeyInfo)) {
            return issuer.Get();
        }
    }
    return nullptr;
}

void LogVriInfo(PCCERT_CONTEXT certificate, const OperationLog& log)
{
    LogName(certificate, 0,
            "Certificate Subject: ", "Unable to get certificate subject / certificate has empty subject.", log);
    LogName(certificate, CERT_NAME_ISSUER_FLAG,
            "Certificate Issuer: ", "Unable to get certificate issuer / certificate has empty issuer.", log);
    log.Trace("Certificate Valid From: " + TimeText(certificate->pCertInfo->NotBefore));
    log.Trace("Certificate Expires On: " + TimeText(certificate->pCertInfo->NotAfter));
}

} // namespace vantor
