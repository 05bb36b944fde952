#include "platform/files/file_facts.h"

#include <algorithm>
#include <cwctype>
#include <iterator>
#include <string_view>

namespace vantor {
namespace {

constexpr std::wstring_view kFinalPathPrefix = L"\\\\?\\";

/// SYSTEM, Administrators, TrustedInstaller.
constexpr std::wstring_view kTrustedOwners[] = {
    L"S-1-5-18",
    L"S-1-5-32-544",
    L"S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464",
};

bool IsSameText(std::wstring_view left, std::wstring_view right)
{
    const auto lower = [](wchar_t c) { return std::towlower(static_cast<std::wint_t>(c)); };
    const auto isSame = [&](wchar_t a, wchar_t b) { return a == b || lower(a) == lower(b); };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), isSame);
}

} // namespace

bool IsPlainFile(const FileFacts& file)
{
    return file.isDisk && !file.isDirectory && !file.isLink && file.names == 1;
}

bool IsOwnerTrusted(const FileFacts& file, const std::wstring& self)
{
    if (file.owner.empty()) {
        return false;
    }
    return file.owner == self || std::ranges::find(kTrustedOwners, file.owner) != std::end(kTrustedOwners);
}

std::optional<std::wstring> LocalPath(const FileFacts& file)
{
    const std::wstring_view path = file.path;
    if (!path.starts_with(kFinalPathPrefix)) {
        return std::nullopt;
    }
    const std::wstring_view local = path.substr(kFinalPathPrefix.size());
    const bool hasDrive = local.size() > 2 && local[1] == L':' && local[2] == L'\\';
    return hasDrive ? std::optional<std::wstring>(local) : std::nullopt;
}

bool IsFolderAt(const FileFacts& folder, const std::wstring& path)
{
    std::wstring_view asked = path;
    if (asked.ends_with(L'\\')) {
        asked.remove_suffix(1);
    }
    const auto real = LocalPath(folder);
    return folder.isDisk && folder.isDirectory && !folder.isLink && real && IsSameText(*real, asked);
}

bool IsDirectlyIn(const FileFacts& file, const FileFacts& folder)
{
    const std::size_t end = file.path.rfind(L'\\');
    return end != std::wstring::npos && !folder.path.empty() && file.path.substr(0, end) == folder.path;
}

} // namespace vantor
