// Modules that are bound on first use: what the program calls in them, and whether it is all there.
#pragma once

#include <span>
#include <string>

namespace vantor {

/// A delay-loaded module and the functions that the program calls in it. The tables of all of them are in
/// delay_import_tables.h, which CMake makes from the .def files.
struct DelayImport {
    const wchar_t* module;
    std::span<const char* const> functions;
};

/// Loads the module from System32 and looks for each function (LoadLibraryExW, GetProcAddress), since a delay-loaded
/// call that fails ends the process. Returns what is missing, with Windows' error number, or an empty text.
/// The module stays loaded.
std::string FindMissing(const DelayImport& import);

} // namespace vantor
