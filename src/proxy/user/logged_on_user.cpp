#include "proxy/user/logged_on_user.h"

#include "platform/registry.h"
#include "platform/text/encoding.h"
#include "platform/text/lower_case.h"
#include "proxy/user/shell_names.h"
#include "run/log/operation_log.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace vantor {
namespace {

using Logger = std::shared_ptr<ILogger>;

std::vector<std::string> ReadShellNames()
{
    const auto winlogon = RegistryKey::OpenForReading(L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon");
    const auto shell = winlogon ? winlogon->QueryWholeText(L"Shell") : std::nullopt;
    std::vector<std::string> names;
    for (const std::wstring& name : ShellNames(shell.value_or(L"Explorer.exe"))) {
        names.push_back(LowerCase(ToNarrow(name))); // like the process list
    }
    return names;
}

/// Logs a failed call with the last error, and keeps it.
KernelHandle Fail(const OperationLog& log, const std::string& message)
{
    const LastErrorKeeper error;
    log.Trace(message + std::to_string(error.Error()));
    return {};
}

std::string Hexadecimal(DWORD number)
{
    char text[2 * sizeof(number) + 1];
    std::snprintf(text, sizeof(text), "%lx", static_cast<unsigned long>(number));
    return text;
}

/// The ids of the processes with one of the names. Those in the session at the machine's own screen come first, because
/// users in other sessions may be disconnected.
std::vector<DWORD> IsAnyProcessRunning(ITokenCalls& tokens, const std::vector<std::string>& names, const Logger& logger)
{
    const ProcessList list = tokens.ListProcesses();
    if (list.failedCall) {
        OperationLog(logger, "CHTTPSessionAutoProxy::IsAnyProcessRunning")
            .Trace(std::string(list.failedCall) + "() returns unexpected code " + std::to_string(list.error));
    }
    std::vector<DWORD> ids;
    for (const ProcessEntry& entry : list.entries) {
        if (std::ranges::find(names, entry.name) != names.end()) {
            ids.push_back(entry.id);
        }
    }
    const DWORD console = tokens.ActiveConsoleSession();
    std::stable_partition(ids.begin(), ids.end(),
                          [&](DWORD id) { return console != kNoSession && tokens.SessionOf(id) == console; });
    return ids;
}

/// The token of a shell's user; empty if it cannot be opened.
KernelHandle GetShellToken(ITokenCalls& tokens, DWORD id, const OperationLog& log)
{
    const KernelHandle process = tokens.OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, id);
    if (!process) {
        return Fail(log, "OpenProcess() failed for PID:0x" + Hexadecimal(id) + " Err : ");
    }
    KernelHandle user = tokens.OpenProcessToken(process.Get(), TOKEN_ASSIGN_PRIMARY | TOKEN_DUPLICATE | TOKEN_QUERY);
    if (!user) {
        return Fail(log, "OpenProcessToken() failed for PID: 0x" + Hexadecimal(id) + " Err : ");
    }
    if (tokens.IsSystem(user.Get())) { // without a desktop the shell is cmd.exe, which services also run
        log.Trace("Passed over, since SYSTEM is no logged-on user: PID:0x" + Hexadecimal(id));
        return {};
    }
    return user;
}

/// The token of the logged-on user's shell.
KernelHandle GetExplorersToken(ITokenCalls& tokens, const Logger& logger)
{
    const OperationLog log(logger, "CHTTPSessionAutoProxy::GetExplorersToken");
    const std::vector<DWORD> ids = IsAnyProcessRunning(tokens, ReadShellNames(), logger);
    if (ids.empty()) {
        log.Trace("Failed to get any running process with ShellExeNames");
    }
    for (const DWORD id : ids) {
        if (KernelHandle user = GetShellToken(tokens, id, log)) {
            log.Trace("Using shell process token to impersonate");
            return user;
        }
    }
    return {};
}

/// This account's token without its privileges.
KernelHandle GetSaferToken(ITokenCalls& tokens, const Logger& logger)
{
    const OperationLog log(logger, "CHTTPSessionAutoProxy::GetSaferToken");
    SAFER_LEVEL_HANDLE level = nullptr;
    if (!tokens.SaferCreateLevel(SAFER_SCOPEID_USER, SAFER_LEVELID_NORMALUSER, SAFER_LEVEL_OPEN, level)) {
        return Fail(log, "SaferCreateLevel() failed. Err: ");
    }
    KernelHandle user = tokens.SaferComputeTokenFromLevel(level);
    {
        const LastErrorKeeper keeper;
        tokens.SaferCloseLevel(level);
    }
    if (!user) {
        return Fail(log, "SaferComputeTokenFromLevel() failed. Error: ");
    }
    log.Trace("Using 'safer' token to impersonate i.e. no shell processes found. Possibly no logged on user.");
    return user;
}

} // namespace

KernelHandle DiscoverUserToImpersonate(ITokenCalls& tokens, const std::shared_ptr<ILogger>& logger)
{
    if (KernelHandle user = GetExplorersToken(tokens, logger)) {
        return user;
    }
    KernelHandle user = GetSaferToken(tokens, logger);
    if (!user) {
        const LastErrorKeeper keeper;
        OperationLog(logger, "CHTTPSessionAutoProxy::DiscoverUserToImpersonate")
            .Trace("Unable to read manual system proxy because failed to get explorer token and normal user level "
                   "token");
    }
    return user;
}

} // namespace vantor
