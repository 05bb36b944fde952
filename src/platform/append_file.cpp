#include "platform/append_file.h"

#include <algorithm>

namespace vantor {
namespace {

FileHandle OpenToAppend(const std::wstring& path, DWORD access)
{
    return FileHandle(::CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
}

} // namespace

AppendFile::AppendFile(const std::wstring& path)
    : m_handle(OpenToAppend(path, FILE_APPEND_DATA | FILE_READ_DATA)) // without the second Windows grants no lock
{
    if (!m_handle) {
        m_handle = OpenToAppend(path, FILE_APPEND_DATA);
    }
}

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

/// Whether the range is locked now; false when others kept it or the file knows no locks.
bool AppendFile::Lock(OVERLAPPED& range)
{
    constexpr DWORD kFlags = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;

    while (!::LockFileEx(m_handle.Get(), kFlags, 0, 1, 0, &range)) {
        const DWORD error = ::GetLastError();
        if ((error != ERROR_LOCK_VIOLATION && error != ERROR_IO_PENDING) || m_patienceMs == 0) {
            return false;
        }
        const ULONGLONG begun = ::GetTickCount64();
        ::Sleep(1);
        m_patienceMs -= std::min(m_patienceMs, std::max(static_cast<DWORD>(::GetTickCount64() - begun), DWORD{1}));
    }
    return true;
}

} // namespace vantor
