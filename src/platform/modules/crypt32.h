// crypt32.dll: certificates and Base64.
#pragma once

#include "platform/modules/module.h"

#include <windows.h>

#include <wincrypt.h>

namespace vantor::crypt32 {

inline constinit SystemModule module(L"crypt32.dll");

inline ModuleFunction<decltype(::CertCreateCertificateContext)> CertCreateCertificateContext(
    module, "CertCreateCertificateContext");
inline ModuleFunction<decltype(::CertFreeCertificateContext)> CertFreeCertificateContext(module,
                                                                                         "CertFreeCertificateContext");
inline ModuleFunction<decltype(::CertGetNameStringW)> CertGetNameStringW(module, "CertGetNameStringW");
inline ModuleFunction<decltype(::CryptBinaryToStringA)> CryptBinaryToStringA(module, "CryptBinaryToStringA");
inline ModuleFunction<decltype(::CryptStringToBinaryA)> CryptStringToBinaryA(module, "CryptStringToBinaryA");
inline ModuleFunction<decltype(::CryptVerifyCertificateSignature)> CryptVerifyCertificateSignature(
    module, "CryptVerifyCertificateSignature");

} // namespace vantor::crypt32
