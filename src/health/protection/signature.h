// The signature of a program file.
#pragma once

#include <windows.h>

#include <string>

namespace vantor {

struct Signature {
    LONG verdict = 0;       ///< result of WinVerifyTrust; 0: trusted
    std::wstring publisher; ///< the signer's name, trusted or not (CertGetNameStringW); empty if there is none
};

/// What ReadSignature needs and this system's wintrust.dll and crypt32.dll lack; empty if nothing is missing.
std::string FindMissingForSignatures();

/// Verifies the signature of an open file; the path is for Windows' own messages. Does not use the network.
Signature ReadSignature(const std::wstring& path, HANDLE file);

} // namespace vantor
