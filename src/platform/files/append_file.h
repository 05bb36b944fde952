// A file to which whole texts are appended.
#pragma once

#include "platform/owner.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace vantor {

/// Every text goes to the end of the file in one write, under a lock that every object of this class respects, those of
/// other processes included: what several of them append at once is neither torn nor lost. Others may read and write
/// the file meanwhile.
class AppendFile {
public:
    /// The byte that is locked during a write. It lies past every file's end, so that no reader is held up.
    static constexpr std::uint64_t kLockedByte = 0x7FFF'FFFF'FFFF'FFFE;

    /// How long an object waits for others' locks, in all its writes together. Then it no longer waits: a process that
    /// hangs with the lock holds nobody up for good.
    static constexpr DWORD kLockTimeoutMs = 2000;

    /// Opens the file, creating it if absent; what it holds is kept. Check IsOpen afterwards. Only a plain file on a disk
    /// is opened, and only under its one name: no link, pipe, device or folder. A file that an elevated process
    /// creates is for SYSTEM and Administrators alone; one that was there keeps its rights.
    explicit AppendFile(const std::wstring& path);

    bool IsOpen() const { return static_cast<bool>(m_handle); }

    /// Appends the text as it stands. False when Windows did not write all of it.
    bool Append(std::string_view text);

private:
    bool Lock(OVERLAPPED& range);

    FileHandle m_handle;
    DWORD m_lockTimeoutMs = kLockTimeoutMs;
};

} // namespace vantor
