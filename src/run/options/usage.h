// The program's help text.
#pragma once

#include <span>
#include <string>

namespace vantor {

/// Whether one of the arguments after the program's own path is "/?", "/help" or "--help", in any case.
bool AsksForUsage(std::span<const char* const> arguments);

/// Every option with its meaning, in lines of at most 79 characters that end with CR LF.
std::string UsageText();

} // namespace vantor
