// The updater's trace files.
#pragma once

#include "platform/files/file_facts.h"
#include "platform/owner.h"

#include <windows.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vantor {

/// "Vexora\Agent\Logs\" in the machine-wide application-data folder (SHGetFolderPathW); std::nullopt on failure.
std::optional<std::wstring> TraceFolderPath();

/// The file name, without the folder, for a session that starts at this local time.
std::wstring TraceFileName(const SYSTEMTIME& localTime);

/// The trace folder. While it is held open, it cannot be moved or replaced. Files are created and deleted only in this
/// folder even if its path changes, because the location of each file is checked through its handle.
class TraceFolder {
public:
    /// The path ends with a backslash; std::nullopt if there is no folder.
    explicit TraceFolder(std::optional<std::wstring> path = TraceFolderPath()) : m_path(std::move(path)) {}

    const std::optional<std::wstring>& Path() const { return m_path; }

    /// Opens the folder, unless it is already held. Returns 0 or the Windows error code: 1920 (ERROR_CANT_ACCESS_FILE)
    /// if the folder is a link or is reached through one, 1307 (ERROR_INVALID_OWNER) if it does not belong to SYSTEM,
    /// Administrators, TrustedInstaller or the program's own user. Logs these two.
    DWORD Hold();

    /// Names of the trace files in the held folder, oldest first: by time of last change, then by name.
    std::vector<std::wstring> List() const;

    /// Creates an empty file in the held folder. Returns 0 or the Windows error code: 80 (ERROR_FILE_EXISTS) if the
    /// name is already taken, even by a link.
    DWORD Create(const std::wstring& name) const;

    /// Deletes a file in the held folder; a link itself, not its target. Returns 0 or the Windows error code.
    DWORD Delete(const std::wstring& name) const;

private:
    std::optional<std::wstring> m_path;
    FileHandle m_handle;
    FileFacts m_facts;
};

/// Deletes the oldest files until kMaxTraceFiles are left. False, with a warning, if one cannot be deleted.
bool TrimTraceFiles(const TraceFolder& folder, const std::vector<std::wstring>& oldestFirst);

/// How many trace files are kept before a new one is created.
inline constexpr std::size_t kMaxTraceFiles = 9;

} // namespace vantor
