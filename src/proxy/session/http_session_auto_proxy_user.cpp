// The part of CHTTPSessionAutoProxy that makes the thread act as the logged-on user.
#include "proxy/session/http_session_auto_proxy.h"

#include "platform/registry.h"
#include "platform/text.h"
#include "proxy/user/shell_names.h"
#include "proxy/user/token_calls.h"

#include <algorithm>
#include <cstdio>

namespace vantor {
namespace {

std::vector<std::string> ReadShellNames()
{
    const auto winlogon = RegistryKey::OpenForReading(L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon");
    const auto shell = winlogon ? winlogon->QueryWholeText(L"Shell") : std::nullopt;
    return ShellNames(shell ? ToNarrow(*shell) : "Explorer.exe");
}

/// Logs a failed call with the last error, which is returned as a negative result.
HRESULT Fail(const OperationLog& log, const std::string& message)
{
    const LastErrorKeeper error;
    log.Trace(message + std::to_string(error.Error()));
    return error.Error() != ERROR_SUCCESS ? HRESULT_FROM_WIN32(error.Error()) : E_FAIL;
}

std::string Hexadecimal(DWORD number)
{
    char text[2 * sizeof(number) + 1];
    std::snprintf(text, sizeof(text), "%lx", static_cast<unsigned long>(number));
    return text;
}

} // namespace

bool CHTTPSessionAutoProxy::Impersonate(HANDLE token, KernelHandle& userToken, KernelHandle& previousToken) const
{
    const OperationLog log = Log("CHTTPSessionAutoProxy::Impersonate");
    ITokenCalls& tokens = Host().Tokens();
    tokens.LoadModules();
    KernelHandle previous = tokens.OpenThreadToken(TOKEN_IMPERSONATE | TOKEN_QUERY);
    if (previous) {
        log.Trace("Currently impersonating. Keeping impersonation token to restore later.");
    } else if (::GetLastError() != ERROR_NO_TOKEN) {
        Fail(log, "The thread could not be restored later. Windows error: ");
        return false;
    }

    KernelHandle user;
    if (token) {
        user = tokens.DuplicateHandle(token);
    } else {
        log.Trace("Attempting to discover the correct user to impersonate");
        DiscoverUserToImpersonate(user);
    }
    if (!user) {
        log.Trace("ImpersonateIfRequired: Failed to discover user access token");
        return false;
    }
    if (!tokens.ImpersonateLoggedOnUser(user.Get())) {
        Fail(log, "Failed to impersonate logged on user. Windows error: ");
        return false;
    }
    userToken = std::move(user); // before anything that may throw: from here on there is something to end
    previousToken = std::move(previous);
    log.Trace("Impersonating logged on user");
    return true;
}

void CHTTPSessionAutoProxy::UnImpersonate(KernelHandle userToken, KernelHandle previousToken) const noexcept
{
    if (!userToken) {
        return;
    }
    const LastErrorKeeper keeper;
    const OperationLog log = Log("CHTTPSessionAutoProxy::UnImpersonate");
    ITokenCalls& tokens = Host().Tokens();
    log.Trace("Impersonating logged on user finished");
    userToken.Reset();
    if (previousToken) {
        if (tokens.ImpersonateLoggedOnUser(previousToken.Get())) {
            return;
        }
        const DWORD error = ::GetLastError();
        log.Trace("Failed to restore logged on user");
        log.Trace("Windows error: " + std::to_string(error) + ". The thread becomes the process's own user instead.");
    }
    if (!tokens.RevertToSelf()) {
        const DWORD error = ::GetLastError();
        log.Error("RevertToSelf() failed. Windows error: " + std::to_string(error) +
                  ". The process ends here: nothing is safe to do as another user.");
        tokens.EndProcess();
    }
}

bool CHTTPSessionAutoProxy::DiscoverUserToImpersonate(KernelHandle& userToken) const
{
    if (SUCCEEDED(GetExplorersToken(userToken)) || SUCCEEDED(GetSaferToken(userToken))) {
        return true;
    }
    const LastErrorKeeper keeper;
    Log("CHTTPSessionAutoProxy::DiscoverUserToImpersonate")
        .Trace("Unable to read manual system proxy because failed to get explorer token and normal user level token");
    return false;
}

HRESULT CHTTPSessionAutoProxy::GetExplorersToken(KernelHandle& userToken) const
{
    const OperationLog log = Log("CHTTPSessionAutoProxy::GetExplorersToken");
    const std::optional<DWORD> id = IsAnyProcessRunning(ReadShellNames());
    if (!id) {
        log.Trace("Failed to get any running process with ShellExeNames");
        return HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
    }
    ITokenCalls& tokens = Host().Tokens();
    const KernelHandle process = tokens.OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, *id);
    if (!process) {
        return Fail(log, "OpenProcess() failed for PID:0x" + Hexadecimal(*id) + " Err : ");
    }
    userToken = tokens.OpenProcessToken(process.Get(), TOKEN_ASSIGN_PRIMARY | TOKEN_DUPLICATE | TOKEN_QUERY);
    if (!userToken) {
        return Fail(log, "OpenProcessToken() failed for PID: 0x" + Hexadecimal(*id) + " Err : ");
    }
    log.Trace("Using shell process token to impersonate");
    return S_OK;
}

HRESULT CHTTPSessionAutoProxy::GetSaferToken(KernelHandle& userToken) const
{
    const OperationLog log = Log("CHTTPSessionAutoProxy::GetSaferToken");
    ITokenCalls& tokens = Host().Tokens();
    SAFER_LEVEL_HANDLE level = nullptr;
    if (!tokens.SaferCreateLevel(SAFER_SCOPEID_USER, SAFER_LEVELID_NORMALUSER, SAFER_LEVEL_OPEN, level)) {
        return Fail(log, "SaferCreateLevel() failed. Err: ");
    }
    userToken = tokens.SaferComputeTokenFromLevel(level);
    {
        const LastErrorKeeper keeper;
        tokens.SaferCloseLevel(level);
    }
    if (!userToken) {
        return Fail(log, "SaferComputeTokenFromLevel() failed. Error: ");
    }
    log.Trace("Using 'safer' token to impersonate i.e. no shell processes found. Possibly no logged on user.");
    return S_OK;
}

std::optional<DWORD> CHTTPSessionAutoProxy::IsAnyProcessRunning(const std::vector<std::string>& names) const
{
    const ProcessList list = Host().Tokens().ListProcesses();
    if (list.failedCall) {
        Log("CHTTPSessionAutoProxy::IsAnyProcessRunning")
            .Trace(std::string(list.failedCall) + "() returns unexpected code " + std::to_string(list.error));
    }
    const auto found = std::find_if(list.entries.begin(), list.entries.end(), [&names](const ProcessEntry& entry) {
        return std::find(names.begin(), names.end(), entry.name) != names.end();
    });
    return found != list.entries.end() ? std::optional(found->id) : std::nullopt;
}

} // namespace vantor
