// A file that several processes append to.
#pragma once

#include "platform/owner.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace vantor {

/// Each text is appended in one write, under a lock that all objects of this class respect, across processes, so that
/// texts appended at the same time are neither interleaved nor lost. Other programs may read and write the file.
class AppendFile {
public:
    /// Offset of the byte that is locked during a write: past the end of any file, so that readers are not blocked.
    static constexpr std::uint64_t kLockedByte = 0x7FFF'FFFF'FFFF'FFFE;

    /// How long an object waits for the lock in total, over all its writes. After that it writes without waiting, so
    /// that a process that hangs while holding the lock does not block the others for good.
    static constexpr DWORD kLockTimeoutMs = 2000;

    /// Opens the file, creating it if absent and keeping its contents. Check IsOpen afterwards. Only a plain file on a
    /// disk with a single name is opened: no link, pipe, device or folder. A file created by an elevated process is
    /// accessible to SYSTEM and Administrators only; an existing file keeps its access rights.
    explicit AppendFile(const std::wstring& path);

    bool IsOpen() const { return static_cast<bool>(m_handle); }

    /// Appends the text unchanged. False when Windows did not write all of it.
    bool Append(std::string_view text);

private:
    bool Lock(OVERLAPPED& range);

    FileHandle m_handle;
    DWORD m_lockTimeoutMs = kLockTimeoutMs;
};

} // namespace vantor
