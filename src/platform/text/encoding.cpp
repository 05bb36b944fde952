#include "platform/text/encoding.h"

#include "platform/text/formatting.h"

#include <windows.h>

#include <cstdint>
#include <limits>
#include <stdexcept>

namespace vantor {
namespace {

int CheckedLength(std::size_t length)
{
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        throw std::length_error("text too long to convert");
    }
    return static_cast<int>(length);
}

std::string Narrow(UINT codePage, std::wstring_view text)
{
    const int length = CheckedLength(text.size());
    if (length == 0) {
        return {};
    }
    // Without this flag Windows replaces characters with similar-looking ones. UTF-8 has them all and rejects the flag.
    const bool isUtf8 = codePage == CP_UTF8 || (codePage == CP_ACP && ::GetACP() == CP_UTF8);
    const DWORD flags = isUtf8 ? 0 : WC_NO_BEST_FIT_CHARS;
    const int size = ::WideCharToMultiByte(codePage, flags, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(size), '\0');
    ::WideCharToMultiByte(codePage, flags, text.data(), length, narrow.data(), size, nullptr, nullptr);
    return narrow;
}

} // namespace

std::string ToNarrow(std::wstring_view text)
{
    return Narrow(CP_ACP, text);
}

std::string ToUtf8(std::wstring_view text)
{
    return Narrow(CP_UTF8, text);
}

std::wstring ToWide(std::string_view text)
{
    const int length = CheckedLength(text.size());
    if (length == 0) {
        return {};
    }
    const int size = ::MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    ::MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), size);
    return wide;
}

std::string PointerText(const void* pointer)
{
    if (!pointer) {
        return "0";
    }
    return "0x" + Hexadecimal(reinterpret_cast<std::uintptr_t>(pointer));
}

} // namespace vantor
