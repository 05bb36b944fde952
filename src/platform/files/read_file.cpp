#include "platform/files/read_file.h"

#include "platform/files/open_file.h"

#include <algorithm>

namespace vantor {

std::optional<std::string> ReadFileStart(const std::wstring& path, std::size_t maxBytes)
{
    constexpr std::size_t kPieceBytes = 4096;

    const FileHandle file(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | kAnonymous, nullptr));
    if (!file) {
        return std::nullopt;
    }
    std::string text;
    while (text.size() < maxBytes) {
        char piece[kPieceBytes];
        DWORD read = 0;
        const auto wanted = static_cast<DWORD>(std::min(kPieceBytes, maxBytes - text.size()));
        if (!::ReadFile(file.Get(), piece, wanted, &read, nullptr) || read == 0) {
            break;
        }
        text.append(piece, read);
    }
    return text;
}

} // namespace vantor
