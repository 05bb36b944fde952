// Flags for opening files safely, and facts about open files.
#pragma once

#include "platform/files/file_facts.h"
#include "platform/owner.h"

namespace vantor {

/// Flags for every CreateFileW call of this program: if the path leads to a pipe, its server can neither identify nor
/// impersonate the caller.
inline constexpr DWORD kAnonymous = SECURITY_SQOS_PRESENT | SECURITY_ANONYMOUS;

/// The same, and a link is opened as itself rather than followed.
inline constexpr DWORD kAnonymousNotThroughLinks = kAnonymous | FILE_FLAG_OPEN_REPARSE_POINT;

/// The facts of an open file (GetFileType, GetFileInformationByHandle, GetFinalPathNameByHandleW, GetSecurityInfo).
/// What Windows does not report keeps its default value. Reading the owner needs a handle with READ_CONTROL.
FileFacts ReadFileFacts(HANDLE file);

/// The SID of the user the process runs as, as text; empty on failure.
std::wstring ProcessUser();

/// Whether the process runs with an administrator's full rights, as SYSTEM does (TokenElevation).
bool IsElevated();

} // namespace vantor
