#include "health/tracing/trace_files.h"

#include "platform/modules/shell32.h"
#include "platform/owner.h"
#include "run/log/logging.h"

#include <shlobj.h>

#include <algorithm>
#include <array>
#include <cwchar>
#include <tuple>

namespace vantor {
namespace {

struct FindHandlePolicy {
    using Value = HANDLE;
    static Value None() noexcept { return INVALID_HANDLE_VALUE; }
    static void Release(Value value) noexcept { ::FindClose(value); }
};

struct TraceFile {
    std::uint64_t changed; ///< in Windows' file time
    std::wstring name;

    auto operator<=>(const TraceFile&) const = default; // NOLINT(modernize-use-nullptr): nothing is written 0
};

} // namespace

std::optional<std::wstring> TraceFolder()
{
    // On demand, although Windows maps it from its own list: a run without a trace does not pay for it.
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
    std::array<wchar_t, 64> name{};
    std::swprintf(name.data(), name.size(), L"scupdateETL_%04d%02d%02d.%02d%02d%02d.log", localTime.wYear,
                  localTime.wMonth, localTime.wDay, localTime.wHour, localTime.wMinute, localTime.wSecond);
    return name.data();
}

std::vector<std::wstring> ListTraceFiles(const std::wstring& folder)
{
    std::vector<TraceFile> files;
    WIN32_FIND_DATAW found{};
    const Owner<FindHandlePolicy> search(::FindFirstFileW((folder + L"scupdateETL_*.log").c_str(), &found));
    if (search) {
        do {
            if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
                const std::uint64_t high = found.ftLastWriteTime.dwHighDateTime;
                files.push_back({high << 32 | found.ftLastWriteTime.dwLowDateTime, found.cFileName});
            }
        } while (::FindNextFileW(search.Get(), &found));
    }
    std::sort(files.begin(), files.end());
    std::vector<std::wstring> paths;
    paths.reserve(files.size());
    for (const TraceFile& file : files) {
        paths.push_back(folder + file.name);
    }
    return paths;
}

bool TrimTraceFiles(const std::vector<std::wstring>& oldestFirst)
{
    for (std::size_t index = 0; index + kMostTraceFiles < oldestFirst.size(); ++index) {
        if (!::DeleteFileW(oldestFirst[index].c_str())) {
            return false;
        }
    }
    return true;
}

} // namespace vantor
