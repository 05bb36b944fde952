// What a person gets who asks the program for help.
#pragma once

#include <span>
#include <string>

namespace vantor {

/// Whether one of the arguments, but for the program's own path at index 0, is "/?", "/help" or "--help", in any case.
bool AsksForUsage(std::span<const char* const> arguments);

/// Every option with its meaning, in lines of at most 79 characters that end with CR LF.
std::string UsageText();

} // namespace vantor
