// The checks a file must pass before a program that runs as SYSTEM uses it. Pure: the facts come from
// platform/files/open_file.h.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vantor {

/// What Windows reports about an open file or folder.
struct FileFacts {
    bool isDisk = false;      ///< on a disk, not a pipe, console or other device (GetFileType)
    bool isDirectory = false; ///< from the file attributes, as is isLink
    bool isLink = false;      ///< a reparse point opened as itself: a symbolic link or a junction
    std::uint32_t names = 0;  ///< number of hard links (BY_HANDLE_FILE_INFORMATION)
    std::wstring path;        ///< real location from GetFinalPathNameByHandleW: "\\?\C:\folder\file"
    std::wstring owner;       ///< the owner's SID as text; empty if unknown
};

/// Whether it is a plain file with a single name, so that writing to it cannot change another file.
bool IsPlainFile(const FileFacts& file);

/// Whether the owner is SYSTEM, Administrators, TrustedInstaller or self, the SID of the user this program runs as.
/// The owner decides who may change the file.
bool IsOwnerTrusted(const FileFacts& file, const std::wstring& self);

/// The final path without its prefix, "C:\folder\file"; std::nullopt if the file is on another host or has no drive.
std::optional<std::wstring> LocalPath(const FileFacts& file);

/// Whether it is a folder, opened as itself, whose real location is this path. Case and a trailing backslash are
/// ignored.
bool IsFolderAt(const FileFacts& folder, const std::wstring& path);

/// Whether the file is directly in the folder. The final paths are compared exactly.
bool IsDirectlyIn(const FileFacts& file, const FileFacts& folder);

} // namespace vantor
