// The trace files of the updater on disk.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace vantor {

/// "Vexora\Agent\Logs\" under the machine-wide application-data folder (SHGetFolderPathW); nothing when Windows does
/// not tell it.
std::optional<std::wstring> TraceFolder();

/// Name of the trace file of a session that starts at this local time, without its folder.
std::wstring TraceFileName(const SYSTEMTIME& localTime);

/// Full paths of the trace files in a folder, the oldest first: by the time of their last change, then by name.
std::vector<std::wstring> ListTraceFiles(const std::wstring& folder);

/// Deletes the oldest until nine are left. False when one cannot be deleted.
bool TrimTraceFiles(const std::vector<std::wstring>& oldestFirst);

/// So many trace files are left alone.
inline constexpr std::size_t kMostTraceFiles = 9;

} // namespace vantor
