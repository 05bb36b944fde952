// The signature of a program file.
#pragma once

#include <windows.h>

#include <string>

namespace vantor {

struct Signature {
    LONG verdict = 0;       ///< what WinVerifyTrust says: 0 for trusted
    std::wstring publisher; ///< the signer's name, trusted or not (CertGetNameStringW); empty when there is none
};

/// What wintrust.dll and crypt32.dll of this Windows lack for the function below; empty when nothing is missing.
std::string FindMissingForSignatures();

/// Judges the signature of an open file; the path is for Windows' own messages. Asks nobody on the network.
Signature ReadSignature(const std::wstring& path, HANDLE file);

} // namespace vantor
