#include "proxy/user/shell_names.h"

#include "platform/text/lower_case.h"

#include <algorithm>

namespace vantor {
namespace {

std::wstring_view SkipBlanks(std::wstring_view text)
{
    return text.substr(std::min(text.find_first_not_of(L" \t"), text.size()));
}

/// Removes and returns the part of the text before the first comma outside quotes.
std::wstring_view TakeEntry(std::wstring_view& text)
{
    std::size_t end = 0;
    for (bool quoted = false; end < text.size() && (quoted || text[end] != L','); ++end) {
        quoted ^= text[end] == L'"';
    }
    const std::wstring_view entry = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return entry;
}

/// The program of a lower-case command line. Without quotes it ends after ".exe", because paths contain blanks and
/// arguments contain slashes; without ".exe" it ends at the first blank.
std::wstring_view ProgramOf(std::wstring_view command)
{
    if (command.starts_with(L'"')) {
        command.remove_prefix(1);
        return command.substr(0, command.find(L'"'));
    }
    constexpr std::wstring_view kExtension = L".exe";
    for (std::size_t at = command.find(kExtension); at != std::wstring_view::npos; at = command.find(kExtension, at)) {
        at += kExtension.size();
        if (at == command.size() || command[at] == L' ' || command[at] == L'\t') {
            return command.substr(0, at);
        }
    }
    return command.substr(0, command.find_first_of(L" \t"));
}

} // namespace

std::vector<std::wstring> ShellNames(std::wstring_view value)
{
    std::vector<std::wstring> names;
    const std::wstring lowered = LowerCase(std::wstring(value));
    for (std::wstring_view rest = lowered; !rest.empty();) {
        const std::wstring_view program = ProgramOf(SkipBlanks(TakeEntry(rest)));
        const std::wstring_view name = program.substr(program.find_last_of(L"\\/") + 1); // npos + 1: from the start
        if (!name.empty()) {
            names.emplace_back(name);
        }
    }
    if (names.empty()) {
        names.emplace_back(L"explorer.exe");
    }
    return names;
}

} // namespace vantor
