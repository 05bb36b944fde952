#include "platform/files/open_file.h"

#include <aclapi.h>
#include <sddl.h>

#include <array>

namespace vantor {
namespace {

/// Memory that a Windows call allocated with LocalAlloc.
template <typename Pointer>
struct LocalMemoryPolicy {
    using Value = Pointer;
    static Value None() noexcept { return nullptr; }
    static void Release(Value value) noexcept { ::LocalFree(value); }
};

std::wstring FinalPath(HANDLE file)
{
    constexpr DWORD kMaxChars = 32768; // the longest path that Windows supports

    std::wstring path(::GetFinalPathNameByHandleW(file, nullptr, 0, FILE_NAME_NORMALIZED), L'\0');
    if (path.empty() || path.size() > kMaxChars) {
        return {};
    }
    const DWORD length = ::GetFinalPathNameByHandleW(file, path.data(), static_cast<DWORD>(path.size()), 0);
    path.resize(length < path.size() ? length : 0); // not less: the file was renamed in between
    return path;
}

std::wstring SidText(PSID sid)
{
    Owner<LocalMemoryPolicy<LPWSTR>> text;
    return ::ConvertSidToStringSidW(sid, text.Receive()) ? std::wstring(text.Get()) : std::wstring();
}

std::wstring OwnerOf(HANDLE file)
{
    PSID owner = nullptr; // points into the descriptor
    Owner<LocalMemoryPolicy<PSECURITY_DESCRIPTOR>> descriptor;
    const DWORD error = ::GetSecurityInfo(file, SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &owner, nullptr, nullptr,
                                          nullptr, descriptor.Receive());
    return error == ERROR_SUCCESS && owner ? SidText(owner) : std::wstring();
}

/// Queries one information class of the process's token into a record; false on failure.
template <typename Record>
bool QueryToken(TOKEN_INFORMATION_CLASS information, Record& record)
{
    KernelHandle token;
    DWORD size = 0;
    return ::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, token.Receive()) &&
           ::GetTokenInformation(token.Get(), information, &record, sizeof(record), &size);
}

} // namespace

FileFacts ReadFileFacts(HANDLE file)
{
    FileFacts facts;
    facts.isDisk = ::GetFileType(file) == FILE_TYPE_DISK;
    BY_HANDLE_FILE_INFORMATION information{};
    if (::GetFileInformationByHandle(file, &information)) {
        facts.isDirectory = (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        facts.isLink = (information.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
        facts.names = information.nNumberOfLinks;
    }
    facts.path = FinalPath(file);
    facts.owner = OwnerOf(file);
    return facts;
}

std::wstring ProcessUser()
{
    struct {
        TOKEN_USER user;
        std::array<BYTE, SECURITY_MAX_SID_SIZE> room; ///< for the SID that user points to
    } record{};
    return QueryToken(TokenUser, record) ? SidText(record.user.User.Sid) : std::wstring();
}

bool IsElevated()
{
    TOKEN_ELEVATION elevation{};
    return QueryToken(TokenElevation, elevation) && elevation.TokenIsElevated != 0;
}

} // namespace vantor
