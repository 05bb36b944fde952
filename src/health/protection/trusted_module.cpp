#include "health/protection/trusted_module.h"

#include "health/protection/aac_control.h"
#include "health/protection/module_trust.h"
#include "health/protection/signature.h"
#include "platform/dynamic_function.h"
#include "platform/files/open_file.h"
#include "platform/program.h"
#include "platform/registry.h"
#include "platform/text/encoding.h"
#include "run/log/logging.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <iterator>
#include <utility>
#include <vector>

namespace vantor {
namespace {

constexpr const wchar_t* kInterfaceNames[] = {L"AacControl6", L"AacControl5", L"AacControl4",
                                              L"AacControl3", L"AacControl2", L"AacControl"};

/// A directory to search.
struct SearchPlace {
    std::wstring directory;
    const wchar_t* announcement = nullptr; ///< for OutputDebugStringW before the search
    bool isCurrentFolder = false;
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
    places.push_back({CurrentDirectory(), L"NCPrivateLoadAndValidateVPTDll: Looking in current directory\n", true});
    return places;
}

/// Whether the path is "C:\..." on a drive that is not mapped. Other paths would depend on the current folder, or would
/// authenticate this host's account to another host.
bool IsOnLocalDrive(const std::wstring& path)
{
    return path.size() > 2 && path[1] == L':' && path[2] == L'\\' &&
           ::GetDriveTypeW(path.substr(0, 3).c_str()) != DRIVE_REMOTE;
}

/// Opens a file so that nobody can write, rename or delete it until it is closed.
FileHandle OpenToCheck(const std::wstring& path)
{
    return FileHandle(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL | kAnonymous, nullptr));
}

/// Who signed this program; empty if it is not signed.
std::wstring ReadOwnPublisher()
{
    const std::wstring path = ProgramPath().value_or(L"");
    const FileHandle file = OpenToCheck(path);
    return file ? ReadSignature(path, file.Get()).publisher : std::wstring();
}

const LoaderFacts& Loader()
{
    static const LoaderFacts facts{ReadOwnPublisher(), ProcessUser()}; // constant during a run
    return facts;
}

void ReportDistrust(const std::wstring& path, LONG result)
{
    std::array<wchar_t, 1024> text{};
    std::swprintf(text.data(), text.size(),
                  L"NotComDllGetInterface: %ls loading %ls, WinVerifyTrust failed with %08x\n",
                  ProgramPath().value_or(L"").c_str(), path.c_str(), static_cast<unsigned>(result));
    ::OutputDebugStringW(text.data());
}

/// Load the imports of a module from System32, if Windows supports that.
DWORD LoadFlags()
{
    return KnowsDllSearchFlags() ? LOAD_LIBRARY_SEARCH_SYSTEM32 : LOAD_WITH_ALTERED_SEARCH_PATH;
}

/// Loads the file if it exists and is trusted.
LoadedModule LoadTrusted(const std::wstring& path, bool isInCurrentFolder)
{
    const FileHandle file = OpenToCheck(path); // held until the module is loaded
    if (!file) {
        return {{}, ::GetLastError()};
    }
    const Signature signature = ReadSignature(path, file.Get());
    if (signature.verdict != 0) {
        ReportDistrust(path, signature.verdict);
        return {{}, static_cast<DWORD>(signature.verdict)};
    }
    const ModuleFacts facts{ReadFileFacts(file.Get()), signature.publisher, isInCurrentFolder};
    if (const char* const fault = DescribeModuleFault(facts, Loader())) {
        LogWarning("A module of the product is not used: " + ToNarrow(path) + ": " + fault);
        return {{}, static_cast<DWORD>(TRUST_E_SUBJECT_NOT_TRUSTED)};
    }
    // By its final path: a folder or drive in the original path may have become a link to another file in the meantime.
    Module module(::LoadLibraryExW(LocalPath(facts.file)->c_str(), nullptr, LoadFlags()));
    const DWORD error = module ? ERROR_SUCCESS : ::GetLastError();
    return {std::move(module), error};
}

/// A module's answer.
struct Answer {
    ModuleInterface result;
    bool wasAsked = false; ///< the module was loaded, so it may support another version if this one fails
};

Answer AskModule(const std::wstring& fileName, const wchar_t* interfaceName)
{
    const LoadedModule loaded = NCPrivateLoadAndValidateVPTDll(fileName);
    if (!loaded.module) {
        return {{loaded.error != ERROR_SUCCESS ? loaded.error : ERROR_FILE_NOT_FOUND}};
    }
    const auto getInterface = FindFunction<NotComDllGetInterfaceFunction>(loaded.module.Get(), "NotComDllGetInterface");
    if (!getInterface) {
        return {{::GetLastError()}};
    }
    Answer answer{{}, true};
    answer.result.error = getInterface(interfaceName, &answer.result.pointer);
    return answer;
}

/// The requested version, followed by the older ones if fallback is allowed.
std::vector<const wchar_t*> VersionsToAskFor(const wchar_t* interfaceName, bool allowFallback)
{
    std::vector<const wchar_t*> names{interfaceName};
    const auto* const known = std::find_if(std::begin(kInterfaceNames), std::end(kInterfaceNames),
                                           [&](const wchar_t* name) { return std::wcscmp(name, interfaceName) == 0; });
    if (allowFallback && known != std::end(kInterfaceNames)) {
        names.insert(names.end(), known + 1, std::end(kInterfaceNames));
    }
    return names;
}

} // namespace

LoadedModule NCPrivateLoadAndValidateVPTDll(const std::wstring& fileName)
{
    if (const std::string missing = FindMissingForSignatures(); !missing.empty()) {
        LogWarning("No module of the product can be checked: this Windows lacks " + missing);
        return {{}, ERROR_MOD_NOT_FOUND};
    }
    DWORD firstError = ERROR_SUCCESS;
    for (const SearchPlace& place : SearchPlaces()) {
        if (place.announcement) {
            ::OutputDebugStringW(place.announcement);
        }
        const std::wstring path = place.directory + L'\\' + fileName;
        if (!IsOnLocalDrive(path)) {
            continue;
        }
        LoadedModule loaded = LoadTrusted(path, place.isCurrentFolder);
        if (loaded.module) {
            return loaded;
        }
        const bool isAbsent = loaded.error == ERROR_FILE_NOT_FOUND || loaded.error == ERROR_PATH_NOT_FOUND;
        if (firstError == ERROR_SUCCESS && !isAbsent) {
            firstError = loaded.error; // the first existing file explains the failure best
        }
    }
    return {{}, firstError};
}

ModuleInterface GetModuleInterface(const std::wstring& fileName, const wchar_t* interfaceName, bool allowFallback)
{
    constexpr std::size_t kNameLimit = 32768;

    if (fileName.size() >= kNameLimit) {
        return {ERROR_INVALID_PARAMETER};
    }
    ModuleInterface result;
    for (const wchar_t* const name : VersionsToAskFor(interfaceName, allowFallback)) {
        const Answer answer = AskModule(fileName, name);
        result = answer.result;
        if (result.error == ERROR_SUCCESS || !answer.wasAsked) {
            break;
        }
    }
    return result;
}

} // namespace vantor
