#include "run/task/registration_checks.h"

#include <algorithm>

namespace vantor {
namespace {

/// SYSTEM and Administrators, as SDDL abbreviations and as SIDs.
constexpr std::wstring_view kAdministrators[] = {L"SY", L"BA", L"S-1-5-18", L"S-1-5-32-544"};

bool IsLetter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool IsSlash(char character)
{
    return character == '\\' || character == '/';
}

} // namespace

bool ArePassedWhole(const RunConfig& config)
{
    return (config.username + config.password).find_first_of(" \t\"") == std::string::npos;
}

bool IsTheSameForEveryone(std::string_view path, bool (*isOwnDrive)(char letter))
{
    constexpr std::string_view kVerbatim = "\\\\?\\";
    if (path.starts_with(kVerbatim)) {
        path.remove_prefix(kVerbatim.size());
    }
    return path.size() > 3 && IsLetter(path[0]) && path[1] == ':' && IsSlash(path[2]) && isOwnDrive(path[0]);
}

bool IsOwnedByAdministrators(std::wstring_view descriptor)
{
    constexpr std::wstring_view kOwner = L"O:";
    if (!descriptor.starts_with(kOwner)) {
        return false;
    }
    descriptor.remove_prefix(kOwner.size());
    // The next part begins with a letter and a colon: "O:BAG:SYD:...".
    const std::size_t colon = descriptor.find(L':');
    const std::wstring_view owner = descriptor.substr(0, colon == std::wstring_view::npos ? colon : colon - 1);
    return std::ranges::find(kAdministrators, owner) != std::end(kAdministrators);
}

} // namespace vantor
