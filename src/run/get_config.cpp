#include "run/get_config.h"

#include "platform/program.h"
#include "platform/registry.h"
#include "platform/text.h"
#include "run/logging.h"
#include "run/options.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

namespace vantor {
namespace {

void ReadSideFile(RunConfig& config)
{
    constexpr std::string_view kLogFile = "/logfile=";
    constexpr std::size_t kMostBytes = 1024 * 1024; // the file holds a line or two; what is longer is not read

    std::optional<std::wstring> path = ProgramPath();
    if (!path) {
        return;
    }
    path->resize(std::min(path->rfind(L'.'), path->size()));
    std::ifstream file(std::filesystem::path(*path + L".txt"), std::ios::binary);
    if (!file) {
        return;
    }
    std::string text(kMostBytes, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));

    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(kLogFile)) {
            LogTrace("Handling '/logfile' from config file.");
            config.logFile = line.substr(kLogFile.size(), line.find('\r') - kLogFile.size());
        }
    }
}

void ReadRegistry(RunConfig& config)
{
    constexpr std::size_t kBufferChars = 260;
    constexpr DWORD kBufferBytes = kBufferChars * sizeof(wchar_t);

    const auto key = RegistryKey::OpenForReading(L"Software\\Vexora\\AVSolution\\DS\\DS");
    if (!key) {
        return;
    }
    std::array<wchar_t, kBufferChars> path{};
    DWORD size = kBufferBytes - sizeof(wchar_t);
    const LSTATUS status = key->Query(L"szVanTORLog", path.data(), size);
    if (size >= kBufferBytes) {
        std::abort(); // a size out of range is fatal here, not an error to report
    }
    if (status == ERROR_SUCCESS) {
        path[size / sizeof(wchar_t)] = L'\0';
        config.logFile = ToNarrow(path.data());
    }
}

} // namespace

void GetConfig(RunConfig& config, int argc, const char* const* argv)
{
    const ScopeTrace scope("GetConfig");
    config = RunConfig();
    ReadSideFile(config);
    ReadRegistry(config);

    LoggerImpl log;
    ParseArguments(std::vector<std::string>(argv, argv + argc), config, log);
    Validate(config);
}

} // namespace vantor
