#include "run/file_version_info.h"

#include "delay_import_tables.h"
#include "run/logging.h"

#include <algorithm>
#include <cstdio>
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
        for (const Translation& entry : table) {
            if (entry.language == language) {
                return &entry;
            }
        }
    }
    return table.data();
}

class FileVersionInfoImpl final : public FileVersionInfo {
public:
    explicit FileVersionInfoImpl(const wchar_t* path) : m_status(Read(path)) {}

    /// 0 when the object is usable, otherwise a Windows error code.
    DWORD Status() const { return m_status; }

    bool QueryValue(const wchar_t* name, std::wstring& value) override;
    const void* VersionBlock() override { return m_block.data(); }
    void Release() override { delete this; }

private:
    DWORD Read(const wchar_t* path);

    const Translation* m_translation = nullptr; ///< inside the block
    DWORD m_size = 0;
    std::vector<BYTE> m_block;
    DWORD m_status;
};

DWORD FileVersionInfoImpl::Read(const wchar_t* path)
{
    if (const std::string missing = FindMissing(delay_imports::version); !missing.empty()) {
        LogWarning("No file versions can be read: this Windows lacks " + missing);
        return ERROR_MOD_NOT_FOUND;
    }
    DWORD unused = 0;
    m_size = ::GetFileVersionInfoSizeW(path, &unused);
    if (m_size == 0) {
        return ::GetLastError();
    }
    try {
        m_block.resize(m_size);
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    if (!::GetFileVersionInfoW(path, 0, m_size, m_block.data())) {
        return ::GetLastError();
    }
    void* table = nullptr;
    UINT length = 0;
    if (!::VerQueryValueA(m_block.data(), "\\VarFileInfo\\Translation", &table, &length) ||
        length % sizeof(Translation) != 0) {
        return ERROR_INVALID_DATA;
    }
    if (length == 0) {
        return ERROR_FILE_NOT_FOUND;
    }
    m_translation = ChooseTranslation({static_cast<const Translation*>(table), length / sizeof(Translation)});
    return ERROR_SUCCESS;
}

bool FileVersionInfoImpl::QueryValue(const wchar_t* name, std::wstring& value)
{
    wchar_t path[256];
    const int written = std::swprintf(path, std::size(path), L"\\StringFileInfo\\%04x%04x\\%ls",
                                      m_translation->language, m_translation->codePage, name);
    void* text = nullptr;
    UINT length = 0;
    if (written < 0 || !::VerQueryValueW(m_block.data(), path, &text, &length)) {
        return false;
    }
    value.assign(static_cast<const wchar_t*>(text), length);
    value.resize(std::min(value.find(L'\0'), value.size())); // the length counts the final NUL, or not
    return true;
}

struct Releaser {
    void operator()(FileVersionInfo* info) const { info->Release(); }
};

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
    FileVersionInfo* raw = nullptr;
    if (NewFileVersionInfo(path.c_str(), &raw) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    const std::unique_ptr<FileVersionInfo, Releaser> info(raw);

    void* block = nullptr;
    UINT length = 0;
    if (!::VerQueryValueA(info->VersionBlock(), "\\", &block, &length)) {
        throw std::runtime_error("Failed to query raw version data");
    }
    if (length != sizeof(VS_FIXEDFILEINFO)) {
        throw std::runtime_error("Failed to get file info, unexpected size");
    }
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(block);
    return FileVersion{HIWORD(fixed.dwFileVersionMS), LOWORD(fixed.dwFileVersionMS), HIWORD(fixed.dwFileVersionLS),
                       LOWORD(fixed.dwFileVersionLS)};
}

} // namespace vantor
