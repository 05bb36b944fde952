// version.dll: version resources.
#pragma once

#include "platform/modules/module.h"

#include <windows.h>

#include <winver.h>

namespace vantor::version {

inline constinit SystemModule module(L"version.dll");

inline ModuleFunction<decltype(::GetFileVersionInfoSizeW)> GetFileVersionInfoSizeW(module, "GetFileVersionInfoSizeW");
inline ModuleFunction<decltype(::GetFileVersionInfoW)> GetFileVersionInfoW(module, "GetFileVersionInfoW");
inline ModuleFunction<decltype(::VerQueryValueA)> VerQueryValueA(module, "VerQueryValueA");
inline ModuleFunction<decltype(::VerQueryValueW)> VerQueryValueW(module, "VerQueryValueW");

} // namespace vantor::version
