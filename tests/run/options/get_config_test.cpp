#include "run/options/get_config.h"

#include "support/scratch_registry.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

constexpr wchar_t kLogPathKey[] = L"Software\\Vexora\\AVSolution\\DS\\DS";

std::string LogPath()
{
    const char* const arguments[] = {"vantor.exe"};
    RunConfig config{.verbose = true}; // GetConfig starts from the defaults
    GetConfig(config, 1, arguments);
    EXPECT_FALSE(config.verbose);
    return config.logFile;
}

TEST(GetConfig, AnyStateOfTheRegistryValueGivesAPathOrNone)
{
    const std::wstring longest(258, L'x');
    const struct {
        DWORD type;
        std::vector<BYTE> data;
        std::string path;
    } kCases[] = {
        {REG_SZ, {}, ""},
        {REG_SZ, {'a', 0, 'b'}, "a"},                                             // an odd byte, no terminator
        {REG_SZ, ScratchRegistry::Bytes({L'a', 0, L'b', 0}), "a"},                // an embedded terminator
        {REG_DWORD, {'a', 0, 'b', 0}, "ab"},                                      // the type is not judged
        {REG_SZ, ScratchRegistry::Bytes(longest + L'\0'), std::string(258, 'x')}, // the 518 bytes there is room for
        {REG_BINARY, std::vector<BYTE>(519, 'x'), ""},                            // one more is unreadable
    };
    for (const auto& row : kCases) {
        ScratchRegistry registry;
        registry.Set(kLogPathKey, L"szVanTORLog", row.type, row.data);
        EXPECT_EQ(LogPath(), row.path) << row.data.size();
    }
}

} // namespace
} // namespace vantor
