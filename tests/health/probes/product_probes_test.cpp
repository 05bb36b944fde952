#include "health/probes/product_probes.h"

#include "support/log_capture.h"
#include "support/scratch_registry.h"

#include <gtest/gtest.h>

#include <functional>

namespace vantor {
namespace {

constexpr wchar_t kEngine[] = L"Software\\Vexora\\AVSolution\\AVS\\AVS";
constexpr wchar_t kUpdater[] = L"Software\\Vexora\\AVSolution\\DS\\DS";
constexpr wchar_t kAtp[] = L"Software\\Vexora\\Endpoint\\ATP";

TEST(ProductProbes, EngineVersionHasFiveParts)
{
    using Version = std::vector<unsigned>;
    const struct {
        std::wstring text;
        Version version;
    } kCases[] = {
        {L"64.1.90.12345.7", {64, 1, 90, 12345, 7}},        {L"256.257.258.65537.300", {0, 1, 2, 1, 44}},
        {L"64.1.90.12345", {255, 255, 255, 65535, 255}},    {L"64.1.90.12345.7.1", {255, 255, 255, 65535, 255}},
        {L"64.1.90.12345.7 ", {255, 255, 255, 65535, 255}}, {L"", {255, 255, 255, 65535, 255}},
    };
    for (const auto& [text, version] : kCases) {
        ScratchRegistry registry;
        registry.Set(kEngine, L"szVXCoreVersion", text);
        HealthRecord record;
        LogCapture log;
        GetVXCoreVersion(record);
        EXPECT_EQ((Version{record.vxcore_major, record.vxcore_minor, record.vxcore_patch, record.vxcore_build,
                           record.vxcore_pkg}),
                  version);
        EXPECT_EQ(log.Has(" WARN: Error: Invalid value in key HKLM\\Software\\Vexora\\AVSolution\\AVS\\AVS"),
                  version[0] == 255);
    }
}

TEST(ProductProbes, NumbersOfTheUpdater)
{
    const std::string name = "HKLM\\Software\\Vexora\\AVSolution\\DS\\DS\\dwUpdateThrottleMode";
    const struct {
        DWORD type; ///< of all three values; REG_NONE: they are not there
        std::vector<BYTE> data;
        std::uint8_t mode;     ///< 0 to 3; the type is not judged
        std::uint16_t content; ///< major and minor version; only numbers count
        std::string warning;
    } kCases[] = {
        {REG_DWORD, {3, 0, 0, 0}, 3, 3, ""},
        {REG_DWORD, {0x45, 0x23, 1, 0}, 0, 0x2345, " WARN: Invalid value in key " + name},
        {REG_DWORD, {4, 0, 0, 0}, 0, 4, " WARN: Invalid value in key " + name},
        {REG_BINARY, {2}, 2, 65535, ""},
        {REG_SZ, ScratchRegistry::Bytes(L"2 as a text"), 0, 65535, " WARN: Unable to read key " + name},
        {REG_NONE, {}, 0, 65535, " WARN: Unable to read key " + name},
    };
    for (const auto& [type, data, mode, content, warning] : kCases) {
        ScratchRegistry registry;
        registry.Create(kUpdater);
        for (const auto* const value : {L"dwUpdateThrottleMode", L"dwContentMajorVersion", L"dwContentMinorVersion"}) {
            if (type != REG_NONE) {
                registry.Set(kUpdater, value, type, data);
            }
        }
        HealthRecord record;
        LogCapture log;
        GetThottleMode(record);
        EXPECT_EQ(record.throttle_mode, mode);
        EXPECT_EQ(log.Lines().size(), warning.empty() ? 2u : 3u);
        EXPECT_TRUE(warning.empty() || log.Has(warning));
        GetDATVersionFromReg(record);
        EXPECT_EQ(record.dat_major, content);
        EXPECT_EQ(record.dat_minor, content);
    }
}

TEST(ProductProbes, SettingsThatBecomeBits)
{
    constexpr wchar_t kOptions[] = L"SYSTEM\\ControlSet001\\Control\\ProductOptions";
    constexpr wchar_t kFileSystem[] = L"SYSTEM\\CurrentControlset\\Control\\FileSystem";
    constexpr wchar_t kQuality[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\QualityCompat";
    constexpr wchar_t kQualityValue[] = L"cadca5fe-87d3-4b96-b7fb-a231484277cc";
    const struct {
        std::function<void(ScratchRegistry&)> prepare;
        std::uint64_t bits; ///< bits 17, 18 and 23 to 26
    } kCases[] = {
        {[](auto&) {}, 0},
        {[&](auto& r) { r.Set(kOptions, L"ProductType", L"ServerNT"); }, 1 << 18},
        {[&](auto& r) { r.Set(kOptions, L"ProductType", L"ServerNt"); }, 0},
        {[&](auto& r) { r.Set(kOptions, L"ProductType", REG_SZ, ScratchRegistry::Bytes(L"ServerNT")); }, 1 << 18},
        {[&](auto& r) { r.Set(kOptions, L"ProductType", REG_SZ, std::vector<BYTE>(63, 'S')); }, 0},
        {[&](auto& r) { r.Set(kQuality, kQualityValue, DWORD{0}); }, 1 << 17},
        {[&](auto& r) { r.Set(kQuality, kQualityValue, DWORD{2}); }, 0},
        {[&](auto& r) { r.Set(kFileSystem, L"NtfsEnableDirCaseSensitivity", DWORD{1}); }, 1 << 23},
        {[&](auto& r) { r.Set(kFileSystem, L"NtfsEnableDirCaseSensitivity", DWORD{6}); }, 1 << 24},
        {[](auto& r) { r.Set(kAtp, L"enabled", DWORD{3}); }, 1 << 25},
        {[](auto& r) { r.Set(kAtp, L"observeModeEnabled", DWORD{1}); }, 1 << 26},
        {[](auto& r) { r.Set(kAtp, L"enabled", DWORD{2}); }, 0},
    };
    for (const auto& row : kCases) {
        ScratchRegistry registry;
        row.prepare(registry);
        TestResultBits bits;
        bits.Set(ResultBit::case_sensitivity_1, true);
        bits.Set(ResultBit::meltdown_compat, IsQualityCompatible());
        bits.Set(ResultBit::os_type, IsServerProduct());
        ReadCaseSensitivity(bits);
        ReadAtpState(bits);
        EXPECT_EQ(bits.Word(), row.bits);
    }
}

TEST(ProductProbes, TheReputationClientIsLookedForInEachDirectoryThatIsSet)
{
    constexpr wchar_t kEndpoint[] = L"SOFTWARE\\Vexora\\Endpoint\\Common";
    ScratchRegistry registry;
    registry.Set(L"Software\\Vexora\\VSC", L"InstallDir", L"Q:\\4");
    registry.Set(L"SOFTWARE\\Vexora\\VxeAV", L"InstallDir", L"Q:\\3");
    registry.Set(kEndpoint, L"szInstallDir64", L"");
    std::vector<std::string> expected;
    for (const char directory : {'3', '4', '1', '2', '3', '4'}) {
        const std::string path = std::string("Q:\\") + directory + "\\ReputationCommunicator.dll";
        expected.push_back("TRACE: Path in registry location " + path);
    }
    const LogCapture log;
    HealthRecord record;
    ReadRepCommunicatorVersion(record);
    registry.Set(kEndpoint, L"szInstallDir64", L"Q:\\2");
    registry.Set(kEndpoint, L"szInstallDir32", L"Q:\\1");
    ReadRepCommunicatorVersion(record);
    EXPECT_EQ(log.Lines(), expected);
}

} // namespace
} // namespace vantor
