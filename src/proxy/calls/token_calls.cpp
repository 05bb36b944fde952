#include "proxy/calls/token_calls.h"

#include "platform/modules/module.h"
#include "platform/program.h"

#include <array>

namespace vantor {

void WindowsTokenCalls::LoadModules()
{
    // What WinHTTP binds on first use: for names, addresses and routes; for detection, including DHCP, and scripts (if
    // they cannot run outside this process); and for TLS and logons, because the current-user scheme sends while
    // impersonating. A version of Windows that lacks one of them does not need it.
    for (const wchar_t* const module : {L"winhttp.dll",   L"webio.dll",      L"OnDemandConnRouteHelper.dll",
                                        L"ws2_32.dll",    L"mswsock.dll",    L"dnsapi.dll",
                                        L"rasadhlp.dll",  L"fwpuclnt.dll",   L"nlaapi.dll",
                                        L"iphlpapi.dll",  L"winnsi.dll",     L"dhcpcsvc.dll",
                                        L"dhcpcsvc6.dll", L"jsproxy.dll",    L"jscript.dll",
                                        L"secur32.dll",   L"sspicli.dll",    L"msv1_0.dll",
                                        L"kerberos.dll",  L"schannel.dll",   L"bcrypt.dll",
                                        L"ncrypt.dll",    L"ncryptsslp.dll", L"crypt32.dll",
                                        L"cryptnet.dll",  L"rsaenh.dll"}) {
        LoadSystemModule(module);
    }
}

KernelHandle WindowsTokenCalls::OpenThreadToken(DWORD access)
{
    KernelHandle token;
    ::OpenThreadToken(::GetCurrentThread(), access, TRUE, token.Receive());
    return token;
}

BOOL WindowsTokenCalls::ImpersonateLoggedOnUser(HANDLE token)
{
    return ::ImpersonateLoggedOnUser(token);
}

BOOL WindowsTokenCalls::RevertToSelf()
{
    return ::RevertToSelf();
}

KernelHandle WindowsTokenCalls::DuplicateHandle(HANDLE token)
{
    KernelHandle copy;
    HANDLE self = ::GetCurrentProcess(); // a pseudo handle, which needs no closing
    ::DuplicateHandle(self, token, self, copy.Receive(), 0, FALSE, DUPLICATE_SAME_ACCESS);
    return copy;
}

ProcessList WindowsTokenCalls::ListProcesses()
{
    return vantor::ListProcesses();
}

KernelHandle WindowsTokenCalls::OpenProcess(DWORD access, DWORD processId)
{
    return KernelHandle(::OpenProcess(access, FALSE, processId));
}

KernelHandle WindowsTokenCalls::OpenProcessToken(HANDLE process, DWORD access)
{
    KernelHandle token;
    ::OpenProcessToken(process, access, token.Receive());
    return token;
}

DWORD WindowsTokenCalls::ActiveConsoleSession()
{
    return ::WTSGetActiveConsoleSessionId();
}

DWORD WindowsTokenCalls::SessionOf(DWORD processId)
{
    DWORD session = kNoSession;
    ::ProcessIdToSessionId(processId, &session);
    return session;
}

bool WindowsTokenCalls::IsSystem(HANDLE token)
{
    alignas(TOKEN_USER) std::array<BYTE, sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE> user{};
    DWORD size = 0;
    return ::GetTokenInformation(token, TokenUser, user.data(), static_cast<DWORD>(user.size()), &size) &&
           ::IsWellKnownSid(reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid, WinLocalSystemSid);
}

BOOL WindowsTokenCalls::SaferCreateLevel(DWORD scope, DWORD level, DWORD flags, SAFER_LEVEL_HANDLE& handle)
{
    return ::SaferCreateLevel(scope, level, flags, &handle, nullptr);
}

KernelHandle WindowsTokenCalls::SaferComputeTokenFromLevel(SAFER_LEVEL_HANDLE level)
{
    KernelHandle token;
    ::SaferComputeTokenFromLevel(level, nullptr, token.Receive(), 0, nullptr);
    return token;
}

BOOL WindowsTokenCalls::SaferCloseLevel(SAFER_LEVEL_HANDLE level)
{
    return ::SaferCloseLevel(level);
}

void WindowsTokenCalls::EndProcess()
{
    EndProcessAtOnce();
}

} // namespace vantor
