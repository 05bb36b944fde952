#include "proxy/user/shell_names.h"

#include "platform/lower_case.h"

#include <algorithm>

namespace vantor {
namespace {

std::string_view SkipBlanks(std::string_view text)
{
    return text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
}

/// Takes the part of the text before the first comma that stands outside quotes.
std::string_view TakeEntry(std::string_view& text)
{
    std::size_t end = 0;
    for (bool quoted = false; end < text.size() && (quoted || text[end] != ','); ++end) {
        quoted ^= text[end] == '"';
    }
    const std::string_view entry = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return entry;
}

/// The program of a command line in lower case. Without quotes it ends behind its ".exe", since paths contain blanks
/// and arguments contain slashes; a program without one ends at the first blank.
std::string_view ProgramOf(std::string_view command)
{
    if (command.starts_with('"')) {
        command.remove_prefix(1);
        return command.substr(0, command.find('"'));
    }
    constexpr std::string_view kExtension = ".exe";
    for (std::size_t at = command.find(kExtension); at != std::string_view::npos; at = command.find(kExtension, at)) {
        at += kExtension.size();
        if (at == command.size() || command[at] == ' ' || command[at] == '\t') {
            return command.substr(0, at);
        }
    }
    return command.substr(0, command.find_first_of(" \t"));
}

} // namespace

std::vector<std::string> ShellNames(std::string_view value)
{
    std::vector<std::string> names;
    const std::string lowered = LowerCase(std::string(value));
    for (std::string_view rest = lowered; !rest.empty();) {
        const std::string_view program = ProgramOf(SkipBlanks(TakeEntry(rest)));
        const std::string_view name = program.substr(program.find_last_of("\\/") + 1); // npos + 1: from the start
        if (!name.empty()) {
            names.emplace_back(name);
        }
    }
    if (names.empty()) {
        names.emplace_back("explorer.exe");
    }
    return names;
}

} // namespace vantor
