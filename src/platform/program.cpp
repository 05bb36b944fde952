#include "platform/program.h"

#include "platform/dynamic_function.h"

#include <windows.h>

#include <cstdlib>

namespace vantor {
namespace {

using SetDefaultDllDirectoriesFunction = BOOL(WINAPI*)(DWORD);
using SetProcessMitigationPolicyFunction = BOOL(WINAPI*)(int, void*, SIZE_T);

/// A function of kernel32; null if this version of Windows lacks it.
template <typename Function>
Function FindInKernel32(const char* name)
{
    return FindFunction<Function>(::GetModuleHandleA("kernel32"), name);
}

/// One mitigation policy, by its numeric values, because older headers lack the names.
struct MitigationPolicy {
    int policy;
    DWORD flags;
};

constexpr MitigationPolicy kDefences[] = {
    {10, 1 | 2 | 4}, // image load: NoRemoteImages, NoLowMandatoryLabelImages, PreferSystem32Images
    {16, 1},         // redirection trust: EnforceRedirectionTrust
};

} // namespace

void RestrictDllSearchPath()
{
    if (const auto setDirectories = FindInKernel32<SetDefaultDllDirectoriesFunction>("SetDefaultDllDirectories")) {
        setDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
    }
}

bool KnowsDllSearchFlags()
{
    return FindInKernel32<SetDefaultDllDirectoriesFunction>("SetDefaultDllDirectories") != nullptr;
}

void SetProcessDefences()
{
    const auto setPolicy = FindInKernel32<SetProcessMitigationPolicyFunction>("SetProcessMitigationPolicy");
    if (!setPolicy) {
        return;
    }
    for (MitigationPolicy defence : kDefences) {
        setPolicy(defence.policy, &defence.flags, sizeof(defence.flags));
    }
}

void EndProcessAtOnce()
{
    constexpr UINT kExitCode = 3;

    ::TerminateProcess(::GetCurrentProcess(), kExitCode);
    std::abort(); // not reached: a process can always end itself
}

std::optional<std::wstring> ProgramPath()
{
    wchar_t path[MAX_PATH];
    const DWORD length = ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        return std::nullopt;
    }
    return std::wstring(path, length);
}

} // namespace vantor
