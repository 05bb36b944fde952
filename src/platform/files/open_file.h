// Opening files, and asking what was opened.
#pragma once

#include "platform/files/file_facts.h"
#include "platform/owner.h"

namespace vantor {

/// Flags for every CreateFileW of this program: whoever waits behind a pipe of that name learns nothing of the caller
/// and cannot act as him.
inline constexpr DWORD kAnonymous = SECURITY_SQOS_PRESENT | SECURITY_ANONYMOUS;

/// The same, and a link is opened as itself instead of what it leads to.
inline constexpr DWORD kAnonymousNotThroughLinks = kAnonymous | FILE_FLAG_OPEN_REPARSE_POINT;

/// The facts of an open file (GetFileType, GetFileInformationByHandle, GetFinalPathNameByHandleW, GetSecurityInfo).
/// What Windows does not tell stays as in an empty record; the owner takes a handle with READ_CONTROL.
FileFacts ReadFileFacts(HANDLE file);

/// The SID of the user as whom the process runs, as text; empty when Windows does not tell it.
std::wstring ProcessUser();

/// Whether the process runs with an administrator's full rights, as SYSTEM does (TokenElevation).
bool IsElevated();

} // namespace vantor
