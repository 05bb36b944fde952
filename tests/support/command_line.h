// How Windows cuts a command line into arguments.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace vantor {

/// The arguments behind the program's name, by the rules that Windows documents for CommandLineToArgvW: 2n backslashes
/// before a quote stand for n and the quote delimits, 2n + 1 for n and a quote; other backslashes stand for themselves.
inline std::vector<std::string> SplitCommandLine(const std::string& line)
{
    std::vector<std::string> arguments;
    bool isQuoted = false, isInside = false;
    for (std::size_t at = 0; at < line.size(); ++at) {
        const bool ends = !isQuoted && (line[at] == ' ' || line[at] == '\t');
        if (!ends && !isInside) {
            arguments.emplace_back();
        }
        isInside = !ends;
        const std::size_t behind = std::min(line.find_first_not_of('\\', at), line.size());
        if (const std::size_t count = behind - at; count != 0) {
            const bool beforeQuote = behind < line.size() && line[behind] == '"';
            arguments.back().append(beforeQuote ? count / 2 : count, '\\');
            at = behind - 1;
            if (beforeQuote && count % 2 == 1) {
                arguments.back() += line[++at];
            }
        } else if (line[at] == '"' && isQuoted && line.substr(at, 2) == "\"\"") {
            arguments.back() += line[++at]; // two quotes within quotes stand for one, and end them
            isQuoted = false;
        } else if (line[at] == '"') {
            isQuoted = !isQuoted;
        } else if (!ends) {
            arguments.back() += line[at];
        }
    }
    return arguments;
}

} // namespace vantor
