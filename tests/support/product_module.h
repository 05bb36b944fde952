// The product's access-protection module where the program looks for it.
#pragma once

#include "platform/program.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace vantor {

inline constexpr wchar_t kModule[] = L"vxeaaca.dll";

/// A current folder of its own with one build of the product's module, or none. What the module keeps loaded is
/// unloaded at the end, so that the folder can go.
class Scratch {
public:
    explicit Scratch(const std::wstring& build, const char* versions = nullptr, const std::string& refused = "")
    {
        std::filesystem::remove_all(m_folder); // of a run that crashed
        std::filesystem::create_directory(m_folder);
        std::filesystem::current_path(m_folder);
        if (!build.empty()) {
            const auto tests = std::filesystem::path(*ProgramPath()).parent_path();
            std::filesystem::copy_file(tests / L"modules" / build / kModule, kModule);
        }
        ::SetEnvironmentVariableA("VXEAACA_RECORD", "record.txt");
        ::SetEnvironmentVariableA("VXEAACA_VERSIONS", versions);
        ::SetEnvironmentVariableA("VXEAACA_REFUSE", refused.c_str());
    }
    ~Scratch()
    {
        for (int most = 10; most > 0 && ::GetModuleHandleW(kModule); --most) {
            ::FreeLibrary(::GetModuleHandleW(kModule));
        }
        std::filesystem::current_path(m_folder.parent_path());
        std::error_code error;
        std::filesystem::remove_all(m_folder, error);
    }

    /// What the module was asked.
    static std::string Record()
    {
        std::ifstream file("record.txt");
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    const std::filesystem::path m_folder =
        std::filesystem::current_path() / ("access_protection_" + std::to_string(::GetCurrentProcessId()));
};

} // namespace vantor
