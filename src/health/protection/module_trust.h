// Decides whether a module whose signature Windows trusts may be loaded into a process that runs as SYSTEM. Pure: the
// caller reads the facts from the file and its signature.
#pragma once

#include "platform/files/file_facts.h"

#include <string>

namespace vantor {

/// Facts about a module's file.
struct ModuleFacts {
    FileFacts file;
    std::wstring publisher;         ///< the signer's name
    bool isInCurrentFolder = false; ///< found there and not in a better place
};

/// Facts about the program that would load it.
struct LoaderFacts {
    std::wstring publisher; ///< the signer's name; empty if the program is not signed
    std::wstring user;      ///< the SID of the user it runs as
};

/// Why the module must not be loaded, for the log; null if it may be.
const char* DescribeModuleFault(const ModuleFacts& module, const LoaderFacts& loader);

} // namespace vantor
