// What must be known of a file before a program that runs as SYSTEM uses it, and what is judged by it. Pure: the facts
// come from platform/files/open_file.h.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vantor {

/// Facts of an open file or folder.
struct FileFacts {
    bool isDisk = false;      ///< on a disk: no pipe, console or other device (GetFileType)
    bool isDirectory = false; ///< by its attributes, as is the next
    bool isLink = false;      ///< a reparse point that was opened as itself: a symbolic link, a junction
    std::uint32_t names = 0;  ///< hard links to it (BY_HANDLE_FILE_INFORMATION)
    std::wstring path;        ///< where it really is, as GetFinalPathNameByHandleW tells it: "\\?\C:\folder\file"
    std::wstring owner;       ///< its owner's SID as text; empty when that is unknown
};

/// Whether it is a plain file that only one name leads to: what is written to it goes into no other file.
bool IsPlainFile(const FileFacts& file);

/// Whether it belongs to SYSTEM, Administrators, TrustedInstaller or the user with the SID self, as whom this program
/// runs: nobody else decides what is in it and who may change it.
bool IsOwnerTrusted(const FileFacts& file, const std::wstring& self);

/// The final path without its prefix, "C:\folder\file"; nothing when the file is on another host or on no drive.
std::optional<std::wstring> LocalPath(const FileFacts& file);

/// Whether it is a folder that was opened as itself and really is at this path, whatever its case; a backslash at the
/// path's end does not count.
bool IsFolderAt(const FileFacts& folder, const std::wstring& path);

/// Whether the file lies directly in the folder; both final paths are compared as they stand.
bool IsDirectlyIn(const FileFacts& file, const FileFacts& folder);

} // namespace vantor
