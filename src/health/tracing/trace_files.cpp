#include "health/tracing/trace_files.h"

#include "platform/files/open_file.h"
#include "platform/last_error.h"
#include "platform/modules/shell32.h"
#include "platform/system_time.h"
#include "platform/text/encoding.h"
#include "run/log/logging.h"

#include <shlobj.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

namespace vantor {
namespace {

struct FindHandlePolicy {
    using Value = HANDLE;
    static Value None() noexcept { return INVALID_HANDLE_VALUE; }
    static void Release(Value value) noexcept { ::FindClose(value); }
};

struct TraceFile {
    std::uint64_t changed; ///< as a FILETIME
    std::wstring name;

    auto operator<=>(const TraceFile&) const = default; // NOLINT(modernize-use-nullptr): false positive
};

/// Opens a file in the folder with DELETE access. A link is opened as itself.
FileHandle OpenIn(const TraceFolder& folder, const std::wstring& name, DWORD disposition)
{
    const std::wstring path = folder.Path().value_or(L"") + name;
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return FileHandle(::CreateFileW(path.c_str(), DELETE, kShareAll, nullptr, disposition,
                                    FILE_ATTRIBUTE_NORMAL | kAnonymousNotThroughLinks, nullptr));
}

DWORD DeleteOpenFile(HANDLE file)
{
    FILE_DISPOSITION_INFO disposition{TRUE};
    return ::SetFileInformationByHandle(file, FileDispositionInfo, &disposition, sizeof(disposition))
               ? ERROR_SUCCESS
               : LastErrorOr(ERROR_ACCESS_DENIED);
}

} // namespace

std::optional<std::wstring> TraceFolderPath()
{
    // Bound on demand, although it is a known DLL of Windows, so that a run without a trace does not load it.
    if (const std::string missing = shell32::module.FindMissing(); !missing.empty()) {
        LogWarning("The folder of the traces is unknown: this Windows lacks " + missing);
        return std::nullopt;
    }
    wchar_t data[MAX_PATH];
    if (FAILED(shell32::SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, SHGFP_TYPE_CURRENT, data))) {
        return std::nullopt;
    }
    return std::wstring(data) + L"\\Vexora\\Agent\\Logs\\";
}

std::wstring TraceFileName(const SYSTEMTIME& localTime)
{
    return L"scupdateETL_" + ToWide(FormatTime(ToDateTime(localTime), "YYYYMMDD.hhmmss")) + L".log";
}

DWORD TraceFolder::Hold()
{
    if (m_handle) {
        return ERROR_SUCCESS;
    }
    if (!m_path) {
        return ERROR_PATH_NOT_FOUND;
    }
    FileHandle folder(::CreateFileW(m_path->c_str(), FILE_LIST_DIRECTORY | READ_CONTROL,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS | kAnonymousNotThroughLinks, nullptr));
    if (!folder) {
        return LastErrorOr(ERROR_PATH_NOT_FOUND);
    }
    FileFacts facts = ReadFileFacts(folder.Get());
    if (!IsFolderAt(facts, *m_path)) {
        LogWarning("No trace is written into a folder that is a link or lies behind one: " + ToNarrow(*m_path));
        return ERROR_CANT_ACCESS_FILE;
    }
    if (!IsOwnerTrusted(facts, ProcessUser())) {
        LogWarning("No trace is written into a folder that belongs to another user: " + ToNarrow(*m_path) + ", owner " +
                   ToNarrow(facts.owner));
        return ERROR_INVALID_OWNER;
    }
    m_handle = std::move(folder);
    m_facts = std::move(facts);
    return ERROR_SUCCESS;
}

std::vector<std::wstring> TraceFolder::List() const
{
    std::vector<TraceFile> files;
    WIN32_FIND_DATAW found{};
    const Owner<FindHandlePolicy> search(m_handle ? ::FindFirstFileW((*m_path + L"scupdateETL_*.log").c_str(), &found)
                                                  : FindHandlePolicy::None());
    if (search) {
        do {
            if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
                const std::uint64_t high = found.ftLastWriteTime.dwHighDateTime;
                files.push_back({high << 32 | found.ftLastWriteTime.dwLowDateTime, found.cFileName});
            }
        } while (::FindNextFileW(search.Get(), &found));
    }
    std::sort(files.begin(), files.end());
    std::vector<std::wstring> names;
    names.reserve(files.size());
    for (TraceFile& file : files) {
        names.push_back(std::move(file.name));
    }
    return names;
}

DWORD TraceFolder::Create(const std::wstring& name) const
{
    const FileHandle file = OpenIn(*this, name, CREATE_NEW);
    if (!file) {
        return LastErrorOr(ERROR_OPEN_FAILED);
    }
    if (!IsDirectlyIn(ReadFileFacts(file.Get()), m_facts)) {
        DeleteOpenFile(file.Get());
        return ERROR_CANT_ACCESS_FILE;
    }
    return ERROR_SUCCESS;
}

DWORD TraceFolder::Delete(const std::wstring& name) const
{
    const FileHandle file = OpenIn(*this, name, OPEN_EXISTING);
    if (!file) {
        return LastErrorOr(ERROR_OPEN_FAILED);
    }
    return IsDirectlyIn(ReadFileFacts(file.Get()), m_facts) ? DeleteOpenFile(file.Get()) : ERROR_CANT_ACCESS_FILE;
}

bool TrimTraceFiles(const TraceFolder& folder, const std::vector<std::wstring>& oldestFirst)
{
    for (std::size_t index = 0; index + kMaxTraceFiles < oldestFirst.size(); ++index) {
        const std::wstring& name = oldestFirst[index];
        if (const DWORD error = folder.Delete(name); error != ERROR_SUCCESS) {
            LogWarning("An old trace cannot be deleted: " + ToNarrow(name) + " Error:" + std::to_string(error));
            return false;
        }
    }
    return true;
}

} // namespace vantor
