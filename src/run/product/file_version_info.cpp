#include "run/product/file_version_info.h"

#include "platform/last_error.h"
#include "platform/modules/version.h"
#include "run/log/logging.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <iterator>
#include <memory>
#include <new>
#include <span>
#include <stdexcept>
#include <vector>

namespace vantor {
namespace {

/// An entry of a version resource's translation table.
struct Translation {
    WORD language;
    WORD codePage;
};

constexpr WORD kNeutral = 0;
constexpr WORD kUsEnglish = 0x0409;

const Translation* ChooseTranslation(std::span<const Translation> table)
{
    for (const WORD language : {kNeutral, kUsEnglish}) {
        if (const auto found = std::ranges::find(table, language, &Translation::language); found != table.end()) {
            return &*found;
        }
    }
    return table.data();
}

class FileVersionInfoImpl final : public FileVersionInfo {
public:
    explicit FileVersionInfoImpl(const wchar_t* path) : m_status(Read(path)) {}

    /// 0 if the object is usable, otherwise a Windows error code.
    DWORD Status() const { return m_status; }

    bool QueryValue(const wchar_t* name, std::wstring& value) override;
    const void* VersionBlock() override { return m_block.data(); }
    void Release() override { delete this; }

    /// Up to count entries at a place that VerQueryValue returned, limited to the block: place and count come from the
    /// file, which is untrusted.
    template <typename Entry>
    std::span<const Entry> Within(const void* place, std::size_t count) const
    {
        const auto start = reinterpret_cast<std::uintptr_t>(place);
        const auto first = reinterpret_cast<std::uintptr_t>(m_block.data());
        if (start < first || start - first > m_block.size()) {
            return {};
        }
        return {static_cast<const Entry*>(place), std::min(count, (m_block.size() - (start - first)) / sizeof(Entry))};
    }

private:
    DWORD Read(const wchar_t* path);

    const Translation* m_translation = nullptr; ///< points into the block
    DWORD m_size = 0;
    std::vector<BYTE> m_block;
    DWORD m_status;
};

DWORD FileVersionInfoImpl::Read(const wchar_t* path)
{
    if (const std::string missing = version::module.FindMissing(); !missing.empty()) {
        LogWarning("No file versions can be read: this Windows lacks " + missing);
        return ERROR_MOD_NOT_FOUND;
    }
    DWORD unused = 0;
    m_size = version::GetFileVersionInfoSizeW(path, &unused);
    if (m_size == 0) {
        return LastErrorOr(ERROR_INVALID_DATA);
    }
    try {
        m_block.resize(m_size);
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    if (!version::GetFileVersionInfoW(path, 0, m_size, m_block.data())) {
        return LastErrorOr(ERROR_INVALID_DATA);
    }
    void* place = nullptr;
    UINT length = 0;
    if (!version::VerQueryValueA(m_block.data(), "\\VarFileInfo\\Translation", &place, &length) ||
        length % sizeof(Translation) != 0) {
        return ERROR_INVALID_DATA;
    }
    if (length == 0) {
        return ERROR_FILE_NOT_FOUND;
    }
    const auto table = Within<Translation>(place, length / sizeof(Translation));
    if (table.size_bytes() != length) { // a truncated table
        return ERROR_INVALID_DATA;
    }
    m_translation = ChooseTranslation(table);
    return ERROR_SUCCESS;
}

bool FileVersionInfoImpl::QueryValue(const wchar_t* name, std::wstring& value)
{
    wchar_t path[256];
    const int written = std::swprintf(path, std::size(path), L"\\StringFileInfo\\%04x%04x\\%ls",
                                      m_translation->language, m_translation->codePage, name);
    void* place = nullptr;
    UINT length = 0;
    if (written < 0 || !version::VerQueryValueW(m_block.data(), path, &place, &length)) {
        return false;
    }
    const auto text = Within<wchar_t>(place, length);
    if (text.empty() && length != 0) {
        return false;
    }
    // The length may or may not count the final NUL.
    value.assign(text.begin(), std::find(text.begin(), text.end(), L'\0'));
    return true;
}

} // namespace

extern "C" DWORD NewFileVersionInfo(const wchar_t* path, FileVersionInfo** out)
{
    auto info = std::unique_ptr<FileVersionInfoImpl>(new (std::nothrow) FileVersionInfoImpl(path));
    if (!info) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    if (info->Status() == ERROR_SUCCESS) {
        *out = info.release();
        return ERROR_SUCCESS;
    }
    return info->Status();
}

std::optional<FileVersion> ReadFileVersion(const std::wstring& path)
{
    FileVersionInfoImpl info(path.c_str());
    if (info.Status() != ERROR_SUCCESS) {
        return std::nullopt;
    }
    void* place = nullptr;
    UINT length = 0;
    if (!version::VerQueryValueA(info.VersionBlock(), "\\", &place, &length)) {
        throw std::runtime_error("Failed to query raw version data");
    }
    if (info.Within<BYTE>(place, length).size() != sizeof(VS_FIXEDFILEINFO)) {
        throw std::runtime_error("Failed to get file info, unexpected size");
    }
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(place);
    return FileVersion{HIWORD(fixed.dwFileVersionMS), LOWORD(fixed.dwFileVersionMS), HIWORD(fixed.dwFileVersionLS),
                       LOWORD(fixed.dwFileVersionLS)};
}

} // namespace vantor
