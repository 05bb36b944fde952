// Whether a module whose signature Windows trusts may be loaded into a process that runs as SYSTEM. Pure: the facts come
// from the file and its signature.
#pragma once

#include "platform/files/file_facts.h"

#include <string>

namespace vantor {

/// What is known of a module's file.
struct ModuleFacts {
    FileFacts file;
    std::wstring publisher;         ///< the name of its signer
    bool isInCurrentFolder = false; ///< found there, and in no better place
};

/// What is known of the program that would load it.
struct LoaderFacts {
    std::wstring publisher; ///< the name of its signer; empty when the program is not signed
    std::wstring user;      ///< the SID of the user as whom it runs
};

/// Why the module is not loaded, for the log; null when it may be.
const char* DescribeModuleFault(const ModuleFacts& module, const LoaderFacts& loader);

} // namespace vantor
