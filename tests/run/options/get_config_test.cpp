#include "run/options/get_config.h"

#include "run/product/brand.h"
#include "run/product/ipv6_preference.h"
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

TEST(Brand, ConsumerProduct)
{
    constexpr wchar_t kConsumer[] = L"Software\\Vexora\\VSC";
    constexpr wchar_t kEngine[] = L"Software\\VxeAV";
    const std::wstring longest(30, L'x'); // 62 bytes with its terminator
    {
        ScratchRegistry registry;
        EXPECT_FALSE(IsConsumerProductInstalled());
        registry.Set(kEngine, L"VersionInfo", longest);
        EXPECT_TRUE(IsConsumerProductInstalled());
        registry.Create(kConsumer); // its own values decide as soon as this key is there
        EXPECT_FALSE(IsConsumerProductInstalled());
        registry.Set(kConsumer, L"MarketReleaseName", longest + L"x");
        EXPECT_FALSE(IsConsumerProductInstalled());
        registry.Set(kConsumer, L"MarketReleaseVer", L"1");
        EXPECT_TRUE(IsConsumerProductInstalled());
    }
    ScratchRegistry registry;
    registry.Set(kConsumer, L"MarketReleaseName", L"");
    EXPECT_TRUE(IsConsumerProductInstalled());
}

TEST(Ipv6Preference, AnyNumberButZero)
{
    constexpr wchar_t kKey[] = L"SOFTWARE\\Vexora\\AVSolution\\VXSHIELDGLOBAL\\GLOBAL";
    ScratchRegistry registry;
    EXPECT_FALSE(PrefersIpv6());
    registry.Set(kKey, L"vriuseipv6", DWORD{0});
    EXPECT_FALSE(PrefersIpv6());
    registry.Set(kKey, L"vriuseipv6", DWORD{0x80000000});
    EXPECT_TRUE(PrefersIpv6());
}

} // namespace
} // namespace vantor
