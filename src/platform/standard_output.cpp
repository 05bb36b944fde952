#include "platform/standard_output.h"

#include "platform/text/encoding.h"

#include <algorithm>
#include <string>

namespace vantor {

void WriteToStandard(DWORD handle, std::string_view text)
{
    constexpr std::size_t kPiece = 8192; // older versions of Windows take little more in one call

    HANDLE stream = ::GetStdHandle(handle);
    DWORD mode = 0;
    DWORD written = 1;
    if (::GetConsoleMode(stream, &mode)) {
        const std::wstring wide = ToWide(text);
        for (std::wstring_view rest = wide; !rest.empty() && written != 0; rest.remove_prefix(written)) {
            const auto size = static_cast<DWORD>(std::min(rest.size(), kPiece));
            written = ::WriteConsoleW(stream, rest.data(), size, &written, nullptr) ? written : 0;
        }
        return;
    }
    for (; !text.empty() && written != 0; text.remove_prefix(written)) {
        const auto size = static_cast<DWORD>(std::min(text.size(), kPiece));
        written = ::WriteFile(stream, text.data(), size, &written, nullptr) ? written : 0;
    }
}

} // namespace vantor
