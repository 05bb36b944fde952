#include "platform/append_file.h"

namespace vantor {

AppendFile::AppendFile(const std::wstring& path)
    : m_handle(::CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL, nullptr))
{
}

bool AppendFile::Append(std::string_view text) const
{
    DWORD written = 0;
    const auto size = static_cast<DWORD>(text.size());
    return ::WriteFile(m_handle.Get(), text.data(), size, &written, nullptr) && written == size;
}

} // namespace vantor
