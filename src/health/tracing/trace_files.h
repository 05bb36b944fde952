// The trace files of the updater on disk.
#pragma once

#include "platform/files/file_facts.h"
#include "platform/owner.h"

#include <windows.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vantor {

/// "Vexora\Agent\Logs\" under the machine-wide application-data folder (SHGetFolderPathW); nothing when Windows does
/// not tell it.
std::optional<std::wstring> TraceFolderPath();

/// Name of the trace file of a session that starts at this local time, without its folder.
std::wstring TraceFileName(const SYSTEMTIME& localTime);

/// The folder of the traces. While it is held open it cannot be moved or replaced, and what is deleted and created lies
/// in this very folder, whatever becomes of its path: each file is judged by its own handle.
class TraceFolder {
public:
    /// The folder of this path, which ends in a backslash; nothing: there is none.
    explicit TraceFolder(std::optional<std::wstring> path = TraceFolderPath()) : m_path(std::move(path)) {}

    const std::optional<std::wstring>& Path() const { return m_path; }

    /// Opens the folder, unless it is held already. Returns 0 or Windows' error: 1920 (ERROR_CANT_ACCESS_FILE) for
    /// a folder that is a link or lies behind one, 1307 (ERROR_INVALID_OWNER) for one that belongs to somebody else
    /// than SYSTEM, Administrators, TrustedInstaller or the program's own user. These two are logged.
    DWORD Hold();

    /// Names of the trace files in the held folder, the oldest first: by the time of their last change, then by name.
    std::vector<std::wstring> List() const;

    /// Creates an empty file in the held folder. Returns 0 or Windows' error: 80 (ERROR_FILE_EXISTS) when anything, a
    /// link included, has the name already.
    DWORD Create(const std::wstring& name) const;

    /// Deletes a file of the held folder, a link as itself. Returns 0 or Windows' error.
    DWORD Delete(const std::wstring& name) const;

private:
    std::optional<std::wstring> m_path;
    FileHandle m_handle;
    FileFacts m_facts;
};

/// Deletes the oldest of the files until nine are left. False, and logged, when one cannot be deleted.
bool TrimTraceFiles(const TraceFolder& folder, const std::vector<std::wstring>& oldestFirst);

/// So many trace files are left alone.
inline constexpr std::size_t kMostTraceFiles = 9;

} // namespace vantor
