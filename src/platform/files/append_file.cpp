#include "platform/files/append_file.h"

#include "platform/files/open_file.h"

#include <sddl.h>

#include <algorithm>
#include <utility>

namespace vantor {
namespace {

/// Access rights of a new file, for CreateFileW: full access for SYSTEM and Administrators, none for anyone else, and
/// nothing inherited.
class AdministratorsOnly {
public:
    AdministratorsOnly()
    {
        ::ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:P(A;;FA;;;SY)(A;;FA;;;BA)", SDDL_REVISION_1,
                                                               &m_attributes.lpSecurityDescriptor, nullptr);
    }
    ~AdministratorsOnly() { ::LocalFree(m_attributes.lpSecurityDescriptor); }
    AdministratorsOnly(const AdministratorsOnly&) = delete;
    AdministratorsOnly& operator=(const AdministratorsOnly&) = delete;

    explicit operator bool() const { return m_attributes.lpSecurityDescriptor != nullptr; }
    SECURITY_ATTRIBUTES* Get() { return &m_attributes; }

private:
    SECURITY_ATTRIBUTES m_attributes{sizeof(SECURITY_ATTRIBUTES), nullptr, FALSE};
};

/// Whether the path names a device, such as a pipe, a port or NUL. Devices are not even opened.
bool IsDevicePath(const std::wstring& path)
{
    std::wstring full(::GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(::GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full.starts_with(L"\\\\.\\");
}

FileHandle OpenToAppend(const std::wstring& path, DWORD access, SECURITY_ATTRIBUTES* rights)
{
    FileHandle file(::CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, rights, OPEN_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL | kAnonymousNotThroughLinks, nullptr));
    return file && IsPlainFile(ReadFileFacts(file.Get())) ? std::move(file) : FileHandle();
}

FileHandle OpenLog(const std::wstring& path)
{
    const bool isElevated = IsElevated();
    AdministratorsOnly rights;
    if (IsDevicePath(path) || (isElevated && !rights)) {
        return {};
    }
    SECURITY_ATTRIBUTES* const given = isElevated ? rights.Get() : nullptr;         // null: inherited from the folder
    FileHandle file = OpenToAppend(path, FILE_APPEND_DATA | FILE_READ_DATA, given); // LockFileEx needs read access
    return file ? std::move(file) : OpenToAppend(path, FILE_APPEND_DATA, given);
}

} // namespace

AppendFile::AppendFile(const std::wstring& path) : m_handle(OpenLog(path)) {}

bool AppendFile::Append(std::string_view text)
{
    OVERLAPPED range{};
    range.Offset = static_cast<DWORD>(kLockedByte);
    range.OffsetHigh = static_cast<DWORD>(kLockedByte >> 32);
    const bool locked = Lock(range);

    DWORD written = 0;
    const auto size = static_cast<DWORD>(text.size());
    const bool whole = ::WriteFile(m_handle.Get(), text.data(), size, &written, nullptr) && written == size;
    if (locked) {
        ::UnlockFileEx(m_handle.Get(), 0, 1, 0, &range);
    }
    return whole;
}

/// True once the range is locked; false when others kept it locked or the file does not support locks.
bool AppendFile::Lock(OVERLAPPED& range)
{
    constexpr DWORD kFlags = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;

    while (!::LockFileEx(m_handle.Get(), kFlags, 0, 1, 0, &range)) {
        const DWORD error = ::GetLastError();
        if ((error != ERROR_LOCK_VIOLATION && error != ERROR_IO_PENDING) || m_lockTimeoutMs == 0) {
            return false;
        }
        const ULONGLONG begun = ::GetTickCount64();
        ::Sleep(1);
        m_lockTimeoutMs -=
            std::min(m_lockTimeoutMs, std::max(static_cast<DWORD>(::GetTickCount64() - begun), DWORD{1}));
    }
    return true;
}

} // namespace vantor
