#include "health/protection/signature.h"

#include "platform/modules/crypt32.h"
#include "platform/modules/wintrust.h"

#include <softpub.h>
#include <wintrust.h>

#include <array>

namespace vantor {
namespace {

/// The name of the first signer found by a verification.
std::wstring SignerName(HANDLE verification)
{
    CRYPT_PROVIDER_DATA* const provider = wintrust::WTHelperProvDataFromStateData(verification);
    CRYPT_PROVIDER_SGNR* const signer =
        provider ? wintrust::WTHelperGetProvSignerFromChain(provider, 0, FALSE, 0) : nullptr;
    CRYPT_PROVIDER_CERT* const certificate = signer ? wintrust::WTHelperGetProvCertFromChain(signer, 0) : nullptr;
    if (!certificate || !certificate->pCert) {
        return {};
    }
    std::array<wchar_t, 256> name{}; // a longer name is cut off
    crypt32::CertGetNameStringW(certificate->pCert, CERT_NAME_SIMPLE_DISPLAY_TYPE, 0, nullptr, name.data(),
                                static_cast<DWORD>(name.size()));
    return name.data();
}

} // namespace

std::string FindMissingForSignatures()
{
    const std::string missing = wintrust::module.FindMissing();
    return missing.empty() ? crypt32::module.FindMissing() : missing;
}

Signature ReadSignature(const std::wstring& path, HANDLE file)
{
    WINTRUST_FILE_INFO fileInfo{};
    fileInfo.cbStruct = sizeof(fileInfo);
    fileInfo.pcwszFilePath = path.c_str();
    fileInfo.hFile = file;

    WINTRUST_DATA data{};
    data.cbStruct = sizeof(data);
    data.dwUIChoice = WTD_UI_NONE;
    data.fdwRevocationChecks = WTD_REVOKE_NONE;
    data.dwUnionChoice = WTD_CHOICE_FILE;
    data.pFile = &fileInfo;
    data.dwStateAction = WTD_STATEACTION_VERIFY;
    data.dwProvFlags = WTD_CACHE_ONLY_URL_RETRIEVAL;

    GUID action = WINTRUST_ACTION_GENERIC_VERIFY_V2;
    const auto noWindow = static_cast<HWND>(INVALID_HANDLE_VALUE);
    Signature signature;
    signature.verdict = wintrust::WinVerifyTrust(noWindow, &action, &data);
    signature.publisher = SignerName(data.hWVTStateData);
    data.dwStateAction = WTD_STATEACTION_CLOSE;
    wintrust::WinVerifyTrust(noWindow, &action, &data);
    return signature;
}

} // namespace vantor
