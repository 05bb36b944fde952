// shell32.dll: known folders.
#pragma once

#include "platform/modules/module.h"

#include <windows.h>

#include <shlobj.h>

namespace vantor::shell32 {

inline constinit SystemModule module(L"shell32.dll");

inline ModuleFunction<decltype(::SHGetFolderPathW)> SHGetFolderPathW(module, "SHGetFolderPathW");

} // namespace vantor::shell32
