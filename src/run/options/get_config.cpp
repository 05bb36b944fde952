#include "run/options/get_config.h"

#include "platform/files/read_file.h"
#include "platform/program.h"
#include "platform/text/encoding.h"
#include "run/log/log_texts.h"
#include "run/log/logging.h"
#include "run/options/options.h"
#include "run/product/registry_values.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace vantor {
namespace {

void ReadSideFile(RunConfig& config)
{
    constexpr std::string_view kLogFile = "/logfile=";
    constexpr std::size_t kMaxBytes = 1 << 20; // the file holds a line or two; anything beyond this is ignored

    std::optional<std::wstring> path = ProgramPath();
    if (!path) {
        return;
    }
    path->resize(std::min(path->rfind(L'.'), path->size()));
    const std::string text = ReadFileStart(*path + L".txt", kMaxBytes).value_or("");
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
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

    const auto key = RegistryKey::OpenForReading(registry::kLogPath.key);
    if (!key) {
        return;
    }
    std::array<wchar_t, kBufferChars> path{};
    DWORD size = kBufferBytes - sizeof(wchar_t);
    const LSTATUS status = key->Query(registry::kLogPath.name, path.data(), size);
    if (size >= kBufferBytes) {
        EndProcessAtOnce(); // a size out of range is fatal, not a reported error
    }
    if (status == ERROR_SUCCESS) {
        path[size / sizeof(wchar_t)] = L'\0';
        config.logFile = ToNarrow(path.data());
    }
}

} // namespace

void GetConfig(RunConfig& config, int argc, const char* const* argv)
{
    const ScopeTrace scope(texts::kGetConfig);
    config = RunConfig();
    ReadSideFile(config);
    ReadRegistry(config);

    LoggerImpl log;
    ParseArguments(std::vector<std::string>(argv, argv + argc), config, log);
    Validate(config);
}

} // namespace vantor
