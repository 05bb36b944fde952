#include "health/repair/integrity_checks.h"

#include "platform/registry.h"
#include "platform/text/multi_string.h"
#include "support/log_capture.h"
#include "support/scratch_registry.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

constexpr wchar_t kService[] = L"System\\CurrentControlSet\\Services\\vxedisk";
constexpr wchar_t kFilters[] = L"System\\CurrentControlSet\\Control\\Class\\{4d36e967-e325-11ce-bfc1-08002be10318}";
constexpr wchar_t kPlatform[] = L"SOFTWARE\\WOW6432Node\\Vexora\\SystemCore";
constexpr wchar_t kQuality[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\QualityCompat";
constexpr wchar_t kQualityValue[] = L"cadca5fe-87d3-4b96-b7fb-a231484277cc";

constexpr auto& Bytes = ScratchRegistry::Bytes;

TEST(DeleteFlagCheck, RemovesOneValueAndNothingElse)
{
    ScratchRegistry registry;
    registry.Create(kService);
    RunConfig config;
    {
        LogCapture log;
        CheckVxediskDeleteFlag(config);
        EXPECT_EQ(config, RunConfig());
        EXPECT_TRUE(log.Lines().empty()); // without the value there is no exclusion
    }
    registry.Set(kService, L"DeleteFlag", DWORD{1});
    registry.Set(kService, L"Start", DWORD{3});
    registry.Set(kService, L"Other", L"kept");
    auto expected = registry.Snapshot();
    expected.erase("System\\CurrentControlSet\\Services\\vxedisk\\DeleteFlag");
    LogCapture log;
    CheckVxediskDeleteFlag(config);
    EXPECT_EQ(config, (RunConfig{.vxediskDeleteFlag = true}));
    EXPECT_EQ(registry.Snapshot(), expected);
    EXPECT_EQ(log.Lines(), (std::vector<std::string>{
                               "TRACE: Failed in AacControlCreate. Error Code:2",
                               "TRACE: Failed in initialization of ScopedAccessProtectionExclusionObject.Error code :2",
                               "TRACE: Failed on initialization scoped access protection exclusion object."}));

    registry.Set(kService, L"DeleteFlag", L"longer than a number"); // unreadable: left alone
    config = {};
    CheckVxediskDeleteFlag(config);
    EXPECT_EQ(config, RunConfig());
}

TEST(StartValueCheck, AgreesWithTheFilterListOnOldPlatforms)
{
    constexpr DWORD kNone = 0xFFFFFFFF; // no such value
    const struct {
        const wchar_t* version;
        bool listed;
        DWORD before, after;
        bool corrected;
    } kCases[] = {
        {L"20.4.9.1", true, 4, 0, true}, {L"20.4", true, 1, 0, true},   {L"19", true, kNone, 0, true},
        {L"20.4", true, 0, 0, false},    {L"20.4", false, 4, 3, true},  {L"0.9", false, kNone, 3, true},
        {L"20.4", false, 0, 0, false},   {L"20.4", false, 1, 1, false}, {L"20.4", false, 3, 3, false},
        {L"20.5", true, 4, 4, false},    {L"21.0", false, 4, 4, false}, {L"20", true, 4, 4, false},
        {L"20.x", true, 4, 4, false},    {nullptr, true, 4, 4, false},
    };
    for (const auto& [version, listed, before, after, corrected] : kCases) {
        SCOPED_TRACE(::testing::PrintToString(version ? version : L"none") + std::to_string(before));
        ScratchRegistry registry;
        registry.Create(kService);
        registry.Set(kService, L"DeleteFlag", DWORD{1});
        if (version) {
            registry.Set(kPlatform, L"system_core_version", version);
        }
        if (before != kNone) {
            registry.Set(kService, L"Start", before);
        }
        registry.Set(kFilters, L"UpperFilters", REG_MULTI_SZ, Bytes(listed ? L"vxedisk" : L"partmgr"));
        auto expected = registry.Snapshot();
        RunConfig config;
        CheckVxediskStartValue(config);
        if (corrected) {
            expected["System\\CurrentControlSet\\Services\\vxedisk\\Start"] = "4:" + std::to_string(after);
        }
        EXPECT_EQ(registry.Snapshot(), expected);
        EXPECT_EQ(config, (RunConfig{.vxediskStartValue = corrected}));
    }
}

TEST(StartValueCheck, FailuresAreReported)
{
    ScratchRegistry registry;
    registry.Set(kPlatform, L"system_core_version", L"20.4");
    registry.Set(kFilters, L"UpperFilters", REG_SZ, Bytes(L"vxedisk")); // not a list: not listed
    RunConfig config;
    LogCapture log;
    CheckVxediskStartValue(config); // there is no service key to write to
    EXPECT_EQ(config, (RunConfig{.vxediskStartValue = true, .vxediskStartValueError = true}));
    EXPECT_TRUE(log.Has("TRACE: IsvxediskInUpperFilters: 0"));
    EXPECT_TRUE(log.Has("TRACE: GetvxediskStartValue: 4294967295"));
}

TEST(QualityCompat, TheValueIsThereAndZeroAfterwards)
{
    ScratchRegistry registry;
    registry.Set(kQuality, L"another", L"kept");
    auto expected = registry.Snapshot();
    expected["Software\\Microsoft\\Windows\\CurrentVersion\\QualityCompat\\cadca5fe-87d3-4b96-b7fb-a231484277cc"] =
        "4:0";
    EnsureQualityCompat();
    EXPECT_EQ(registry.Snapshot(), expected);
    for (const DWORD type : {DWORD{REG_SZ}, DWORD{REG_BINARY}}) { // of four zero bytes
        registry.Set(kQuality, kQualityValue, type, std::vector<BYTE>(4));
        EnsureQualityCompat();
        EXPECT_EQ(registry.Snapshot(), expected);
    }
}

} // namespace
} // namespace vantor
