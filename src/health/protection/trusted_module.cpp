#include "health/protection/trusted_module.h"

#include "health/protection/aac_control.h"
#include "platform/dynamic_function.h"
#include "platform/modules/wintrust.h"
#include "platform/program.h"
#include "platform/registry.h"
#include "run/log/logging.h"

#include <softpub.h>
#include <wintrust.h>

#include <algorithm>
#include <array>
#include <cwchar>
#include <iterator>
#include <optional>
#include <vector>

namespace vantor {
namespace {

constexpr const wchar_t* kInterfaceNames[] = {L"AacControl6", L"AacControl5", L"AacControl4",
                                              L"AacControl3", L"AacControl2", L"AacControl"};

/// A directory to look in, and what is announced before that.
struct SearchPlace {
    std::wstring directory;
    const wchar_t* announcement = nullptr;
};

std::wstring CurrentDirectory()
{
    std::wstring directory(::GetCurrentDirectoryW(0, nullptr), L'\0');
    directory.resize(::GetCurrentDirectoryW(static_cast<DWORD>(directory.size()), directory.data()));
    return directory;
}

std::vector<SearchPlace> SearchPlaces()
{
    std::vector<SearchPlace> places;
    if (const auto key = RegistryKey::OpenForReading(L"SOFTWARE\\Vexora\\Endpoint\\Common")) {
        for (const wchar_t* const value : {L"szInstallDir64", L"szInstallDir32"}) {
            places.push_back({key->QueryWholeText(value).value_or(L"")});
        }
    }
    const std::wstring program = ProgramPath().value_or(L"");
    places.push_back({program.substr(0, std::min(program.rfind(L'\\'), program.size())),
                      L"NCPrivateLoadAndValidateVPTDll: Looking in EXE directory\n"});
    places.push_back({CurrentDirectory(), L"NCPrivateLoadAndValidateVPTDll: Looking in current directory\n"});
    return places;
}

/// "C:\..." or "\\server\...": anything else would depend on the current directory.
bool IsAbsolute(const std::wstring& path)
{
    return path.starts_with(L"\\\\") || (path.size() > 2 && path[1] == L':' && path[2] == L'\\');
}

/// What WinVerifyTrust says of an open file; 0 for trusted. Asks nobody on the network.
LONG VerifySignature(const std::wstring& path, HANDLE file)
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
    const LONG result = wintrust::WinVerifyTrust(noWindow, &action, &data);
    data.dwStateAction = WTD_STATEACTION_CLOSE;
    wintrust::WinVerifyTrust(noWindow, &action, &data);
    return result;
}

void ReportDistrust(const std::wstring& path, LONG result)
{
    std::array<wchar_t, 1024> text{};
    std::swprintf(text.data(), text.size(),
                  L"NotComDllGetInterface: %ls loading %ls, WinVerifyTrust failed with %08x\n",
                  ProgramPath().value_or(L"").c_str(), path.c_str(), static_cast<unsigned>(result));
    ::OutputDebugStringW(text.data());
}

/// Loads the file if it is there and trusted; otherwise sets the error.
Module LoadTrusted(const std::wstring& path, DWORD& error)
{
    constexpr DWORD kImportsFromSystem32 = 0x800; // LOAD_LIBRARY_SEARCH_SYSTEM32

    // Held until the module is loaded, so that nobody swaps the file behind the check.
    const FileHandle file(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        error = ::GetLastError();
        return {};
    }
    if (const LONG distrust = VerifySignature(path, file.Get()); distrust != 0) {
        ReportDistrust(path, distrust);
        error = static_cast<DWORD>(distrust);
        return {};
    }
    Module module(::LoadLibraryExW(path.c_str(), nullptr, kImportsFromSystem32));
    error = module ? ERROR_SUCCESS : ::GetLastError();
    return module;
}

/// One version of the interface from the module. Whether the module was there to be asked is told apart: without it
/// no other version is to be had either.
DWORD AskModule(const std::wstring& fileName, const wchar_t* interfaceName, void** interfacePointer, bool& asked)
{
    asked = false;
    DWORD error = ERROR_SUCCESS;
    const Module module = NCPrivateLoadAndValidateVPTDll(fileName, error);
    if (!module) {
        return error != ERROR_SUCCESS ? error : ERROR_FILE_NOT_FOUND;
    }
    const auto getInterface = FindFunction<NotComDllGetInterfaceFunction>(module.Get(), "NotComDllGetInterface");
    if (!getInterface) {
        return ::GetLastError();
    }
    asked = true;
    return getInterface(interfaceName, interfacePointer);
}

} // namespace

Module NCPrivateLoadAndValidateVPTDll(const std::wstring& fileName, DWORD& error)
{
    error = ERROR_SUCCESS;
    if (const std::string missing = wintrust::module.FindMissing(); !missing.empty()) {
        LogWarning("No module of the product can be checked: this Windows lacks " + missing);
        error = ERROR_MOD_NOT_FOUND;
        return {};
    }
    for (const SearchPlace& place : SearchPlaces()) {
        if (place.announcement) {
            ::OutputDebugStringW(place.announcement);
        }
        const std::wstring path = place.directory + L'\\' + fileName;
        if (!IsAbsolute(path)) {
            continue;
        }
        DWORD placeError = ERROR_SUCCESS;
        if (Module module = LoadTrusted(path, placeError)) {
            error = ERROR_SUCCESS;
            return module;
        }
        const bool isAbsent = placeError == ERROR_FILE_NOT_FOUND || placeError == ERROR_PATH_NOT_FOUND;
        if (error == ERROR_SUCCESS && !isAbsent) {
            error = placeError; // the first file that was there explains best
        }
    }
    return {};
}

DWORD GetModuleInterface(const std::wstring& fileName, const wchar_t* interfaceName, bool allowFallback,
                         void** interfacePointer)
{
    constexpr std::size_t kNameLimit = 32768;

    if (fileName.size() >= kNameLimit) {
        return ERROR_INVALID_PARAMETER;
    }
    const auto* name = std::find_if(std::begin(kInterfaceNames), std::end(kInterfaceNames),
                                    [&](const wchar_t* known) { return std::wcscmp(known, interfaceName) == 0; });
    bool asked = false;
    DWORD error = AskModule(fileName, interfaceName, interfacePointer, asked);
    while (error != ERROR_SUCCESS && asked && allowFallback && name != std::end(kInterfaceNames) &&
           ++name != std::end(kInterfaceNames)) {
        error = AskModule(fileName, *name, interfacePointer, asked);
    }
    return error;
}

} // namespace vantor
