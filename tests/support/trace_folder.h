// A folder of traces.
#pragma once

#include "health/tracing/trace_files.h"

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>
#include <system_error>

namespace vantor {

/// A folder of traces for one test.
class ScratchFolder {
public:
    ScratchFolder() { std::filesystem::create_directory(path); }
    ~ScratchFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(path, error);
    }
    std::ptrdiff_t Count() const
    {
        return std::distance(std::filesystem::directory_iterator(path), std::filesystem::directory_iterator());
    }

    const std::filesystem::path path =
        std::filesystem::current_path() / ("traces_" + std::to_string(::GetCurrentProcessId()));
    TraceFolder folder{path.wstring() + L"\\"};
};

} // namespace vantor
