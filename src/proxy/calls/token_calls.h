// The Windows calls for impersonating the logged-on user.
#pragma once

#include "platform/owner.h"
#include "platform/process_list.h"

#include <windows.h>

#include <winsafer.h>

namespace vantor {

inline constexpr DWORD kNoSession = 0xFFFFFFFF;

/// Each operation forwards to the Windows function of the same name and leaves the last-error value as Windows set it.
/// Handles are returned in an owner, which is empty on failure.
class ITokenCalls {
public:
    virtual ~ITokenCalls() = default;

    /// Loads the modules that Windows is known to bind on first use while the thread impersonates the user, who could
    /// have remapped the drive letter that they are loaded from. Modules that only newer versions need may be missing.
    virtual void LoadModules() = 0;

    /// The calling thread's token, opened with the process's own rights; ERROR_NO_TOKEN if it is not impersonating.
    virtual KernelHandle OpenThreadToken(DWORD access) = 0;
    virtual BOOL ImpersonateLoggedOnUser(HANDLE token) = 0;
    virtual BOOL RevertToSelf() = 0;

    /// A second handle of this process to the same token.
    virtual KernelHandle DuplicateHandle(HANDLE token) = 0;

    virtual ProcessList ListProcesses() = 0;
    virtual KernelHandle OpenProcess(DWORD access, DWORD processId) = 0;
    virtual KernelHandle OpenProcessToken(HANDLE process, DWORD access) = 0;

    /// WTSGetActiveConsoleSessionId: the session at the machine's own screen; kNoSession if there is none at the
    /// moment.
    virtual DWORD ActiveConsoleSession() = 0;

    /// ProcessIdToSessionId; kNoSession if the process is gone.
    virtual DWORD SessionOf(DWORD processId) = 0;

    /// Whether the token belongs to the local system account (GetTokenInformation, IsWellKnownSid).
    virtual bool IsSystem(HANDLE token) = 0;

    virtual BOOL SaferCreateLevel(DWORD scope, DWORD level, DWORD flags, SAFER_LEVEL_HANDLE& handle) = 0;
    /// Derives the token from that of the thread or the process, without flags.
    virtual KernelHandle SaferComputeTokenFromLevel(SAFER_LEVEL_HANDLE level) = 0;
    virtual BOOL SaferCloseLevel(SAFER_LEVEL_HANDLE level) = 0;

    /// Ends the process at once. No destructor or other code of the program runs.
    virtual void EndProcess() = 0;
};

/// The implementation that calls Windows.
class WindowsTokenCalls : public ITokenCalls {
public:
    void LoadModules() override;
    KernelHandle OpenThreadToken(DWORD access) override;
    BOOL ImpersonateLoggedOnUser(HANDLE token) override;
    BOOL RevertToSelf() override;
    KernelHandle DuplicateHandle(HANDLE token) override;
    ProcessList ListProcesses() override;
    KernelHandle OpenProcess(DWORD access, DWORD processId) override;
    KernelHandle OpenProcessToken(HANDLE process, DWORD access) override;
    DWORD ActiveConsoleSession() override;
    DWORD SessionOf(DWORD processId) override;
    bool IsSystem(HANDLE token) override;
    BOOL SaferCreateLevel(DWORD scope, DWORD level, DWORD flags, SAFER_LEVEL_HANDLE& handle) override;
    KernelHandle SaferComputeTokenFromLevel(SAFER_LEVEL_HANDLE level) override;
    BOOL SaferCloseLevel(SAFER_LEVEL_HANDLE level) override;
    void EndProcess() override;
};

} // namespace vantor
