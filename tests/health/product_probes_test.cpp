#include "health/product_probes.h"

#include "health/text_probes.h"
#include "log_capture.h"
#include "scratch_registry.h"

#include <gtest/gtest.h>

#include <functional>

namespace vantor {
namespace {

constexpr wchar_t kEngine[] = L"Software\\Vexora\\AVSolution\\AVS\\AVS";
constexpr wchar_t kUpdater[] = L"Software\\Vexora\\AVSolution\\DS\\DS";
constexpr wchar_t kAtp[] = L"Software\\Vexora\\Endpoint\\ATP";

using Prepare = std::function<void(ScratchRegistry&)>;

/// The record after a probe ran on an otherwise empty registry.
HealthRecord RecordAfter(void (*probe)(HealthRecord&), const Prepare& prepare)
{
    ScratchRegistry registry;
    prepare(registry);
    HealthRecord record;
    probe(record);
    return record;
}

/// The bytes of a wide text without a terminator.
std::vector<BYTE> Bytes(const std::wstring& text)
{
    const auto* const data = reinterpret_cast<const BYTE*>(text.data());
    return {data, data + text.size() * sizeof(wchar_t)};
}

/// States of a value that no reader may trip over.
const std::vector<std::vector<BYTE>> kHostileData = {
    {}, {1}, {1, 2, 3}, {0x37, 0, 0x2E}, Bytes({L'1', 0, L'2'}), std::vector<BYTE>(1024 * 1024, 0x31),
};

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
        const HealthRecord record = RecordAfter(
            GetVXCoreVersion, [&](ScratchRegistry& registry) { registry.Set(kEngine, L"szVXCoreVersion", text); });
        EXPECT_EQ((Version{record.vxcore_major, record.vxcore_minor, record.vxcore_patch, record.vxcore_build,
                           record.vxcore_pkg}),
                  version);
    }
    LogCapture log;
    RecordAfter(GetVXCoreVersion, [](ScratchRegistry&) {});
    RecordAfter(GetVXCoreVersion, [](ScratchRegistry& registry) { registry.Create(kEngine); });
    EXPECT_EQ(log.Lines(), (std::vector<std::string>{
                               "TRACE: Entering GetVXCoreVersion",
                               " WARN: Error: Unable to open key HKLM\\Software\\Vexora\\AVSolution\\AVS\\AVS",
                               "TRACE: Leaving GetVXCoreVersion",
                               "TRACE: Entering GetVXCoreVersion",
                               " WARN: Error: Invalid value in key HKLM\\Software\\Vexora\\AVSolution\\AVS\\AVS",
                               "TRACE: Leaving GetVXCoreVersion",
                           }));
}

TEST(ProductProbes, ThrottleModeIsZeroToThree)
{
    const struct {
        Prepare prepare;
        std::uint8_t mode;
        std::string warning;
    } kCases[] = {
        {[](auto& r) { r.Set(kUpdater, L"dwUpdateThrottleMode", DWORD{3}); }, 3, ""},
        {[](auto& r) { r.Set(kUpdater, L"dwUpdateThrottleMode", DWORD{7}); }, 0,
         " WARN: Invalid value in key HKLM\\Software\\Vexora\\AVSolution\\DS\\DS\\dwUpdateThrottleMode"},
        {[](auto& r) { r.Set(kUpdater, L"dwUpdateThrottleMode", REG_BINARY, {2}); }, 2, ""}, // the type is not judged
        {[](auto& r) { r.Set(kUpdater, L"dwUpdateThrottleMode", L"2 as a text"); }, 0,
         " WARN: Unable to read key HKLM\\Software\\Vexora\\AVSolution\\DS\\DS\\dwUpdateThrottleMode"},
        {[](auto& r) { r.Create(kUpdater); }, 0,
         " WARN: Unable to read key HKLM\\Software\\Vexora\\AVSolution\\DS\\DS\\dwUpdateThrottleMode"},
        {[](auto&) {}, 0, " WARN: Unable to open key HKLM\\Software\\Vexora\\AVSolution\\DS\\DS"},
    };
    for (const auto& [prepare, mode, warning] : kCases) {
        LogCapture log;
        EXPECT_EQ(RecordAfter(GetThottleMode, prepare).throttle_mode, mode);
        const auto lines = log.Lines();
        EXPECT_EQ(lines.size(), warning.empty() ? 2u : 3u);
        EXPECT_EQ(warning.empty() ? "" : lines[1], warning);
    }
}

TEST(ProductProbes, ContentVersionCountsOnlyAsNumbers)
{
    const struct {
        Prepare prepare;
        std::uint16_t major, minor;
    } kCases[] = {
        {[](auto&) {}, 0, 0},
        {[](auto& r) { r.Create(kUpdater); }, 65535, 65535},
        {[](auto& r) {
             r.Set(kUpdater, L"dwContentMajorVersion", DWORD{0x12345});
             r.Set(kUpdater, L"dwContentMinorVersion", REG_BINARY, {1, 0, 0, 0});
         },
         0x2345, 65535},
        {[](auto& r) { r.Set(kUpdater, L"dwContentMinorVersion", DWORD{9}); }, 65535, 9},
    };
    for (const auto& [prepare, major, minor] : kCases) {
        const HealthRecord record = RecordAfter(GetDATVersionFromReg, prepare);
        EXPECT_EQ(record.dat_major, major);
        EXPECT_EQ(record.dat_minor, minor);
    }
}

TEST(ProductProbes, SettingsThatBecomeBits)
{
    constexpr wchar_t kOptions[] = L"SYSTEM\\ControlSet001\\Control\\ProductOptions";
    constexpr wchar_t kFileSystem[] = L"SYSTEM\\CurrentControlset\\Control\\FileSystem";
    constexpr wchar_t kQuality[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\QualityCompat";
    constexpr wchar_t kQualityValue[] = L"cadca5fe-87d3-4b96-b7fb-a231484277cc";
    const struct {
        Prepare prepare;
        std::uint64_t bits; ///< bits 17, 18 and 23 to 26
    } kCases[] = {
        {[](auto&) {}, 0},
        {[&](auto& r) { r.Set(kOptions, L"ProductType", L"ServerNT"); }, 1 << 18},
        {[&](auto& r) { r.Set(kOptions, L"ProductType", L"ServerNt"); }, 0},
        {[&](auto& r) { r.Set(kOptions, L"ProductType", L"LanmanNT"); }, 0},
        {[&](auto& r) { r.Set(kOptions, L"ProductType", REG_SZ, Bytes(L"ServerNT")); }, 1 << 18},
        {[&](auto& r) { r.Set(kOptions, L"ProductType", REG_SZ, std::vector<BYTE>(63, 'S')); }, 0},
        {[&](auto& r) { r.Set(kQuality, kQualityValue, DWORD{0}); }, 1 << 17},
        {[&](auto& r) { r.Set(kQuality, kQualityValue, DWORD{2}); }, 0},
        {[&](auto& r) { r.Create(kQuality); }, 0},
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

TEST(ProductProbes, CountersBelongToTheirMode)
{
    ScratchRegistry registry;
    registry.Set(L"Software\\Vexora\\AVSolution\\scannerdata\\ContentRefresh", L"dwCorruptionCount", DWORD{7});
    registry.Set(L"Software\\Vexora\\AVSolution\\scannerdata\\ContentRefresh", L"dwTotalCorruptionCount", DWORD{255});
    registry.Set(kUpdater, L"dwRestartCount", DWORD{300});
    const struct {
        const char* mode;
        std::uint8_t count, total;
    } kCases[] = {{"predatupdate", 7, 255}, {"postdatupdate", 255, 0}, {"periodic", 0, 0}};
    for (const auto& [mode, count, total] : kCases) {
        HealthRecord record;
        ReadCounters(record, {.hcmode = mode});
        EXPECT_EQ(record.count, count) << mode;
        EXPECT_EQ(record.total_count, total) << mode;
    }
}

TEST(TextProbes, EachReadableValueIsAnItem)
{
    constexpr wchar_t kAdapters[] = L"SYSTEM\\ControlSet001\\Control\\Class\\{4d36e968-e325-11ce-bfc1-08002be10318}";
    const std::wstring adapters = kAdapters;
    {
        ScratchRegistry registry;
        LogCapture log;
        const TextItems none = {"Unavailable"};
        EXPECT_EQ(GetProductInfo(), none);
        EXPECT_EQ(GetCPUInfo(), none);
        EXPECT_EQ(GetATPInfo(), none);
        EXPECT_EQ(GetGPUInfo(), none);
        EXPECT_TRUE(log.Has(" WARN: GetProductInfo returned error"));
        EXPECT_TRUE(log.Has(" WARN: GetCPUInfo returned error"));
        EXPECT_TRUE(log.Has(" WARN: GetGPUInfo: Failed to open "
                            "SYSTEM\\ControlSet001\\Control\\Class\\{4d36e968-e325-11ce-bfc1-08002be10318}\\"));
    }
    ScratchRegistry registry;
    LogCapture log;
    registry.Set(L"Software\\Vexora\\Endpoint\\AV", L"ProductVersion", L"10.7.0");
    registry.Set(L"Software\\VxeAV", L"VersionInfo", L"engine");
    registry.Set(L"Software\\Vexora\\VSC", L"MarketReleaseVer", L"16.0");
    registry.Set(L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", L"Identifier", REG_SZ, Bytes(L"Family 6"));
    registry.Set(kAtp, L"BuildNumber", L"4321");
    registry.Set((adapters + L"\\0000").c_str(), L"DriverDesc", L"First");
    registry.Create((adapters + L"\\0001").c_str());
    registry.Set((adapters + L"\\0002").c_str(), L"DriverDesc", L"Second");
    EXPECT_EQ(GetProductInfo(), (TextItems{"10.7.0", "engine", "HSQ_16.0"}));
    EXPECT_EQ(GetCPUInfo(), TextItems{"Family 6"});
    EXPECT_EQ(GetATPInfo(), TextItems{"4321"});
    EXPECT_EQ(GetGPUInfo(), (TextItems{"First", "Second"}));
    EXPECT_TRUE(log.Has("TRACE: GetProductInfo: 10.7.0, engine, HSQ_16.0"));
    EXPECT_TRUE(log.Has(" WARN: GetGPUInfo: RegQueryValueExW Failed to query 'DriverDesc' in "
                        "SYSTEM\\ControlSet001\\Control\\Class\\{4d36e968-e325-11ce-bfc1-08002be10318}\\0001"));
    EXPECT_EQ(CollectTextItems().size(), 3u + 1 + 1 + 1 + 2);
}

TEST(Probes, SurviveAnyStateOfTheirValues)
{
    const std::pair<const wchar_t*, const wchar_t*> kValues[] = {
        {kEngine, L"szVXCoreVersion"},
        {kUpdater, L"dwUpdateThrottleMode"},
        {kUpdater, L"dwContentMajorVersion"},
        {kUpdater, L"dwRestartCount"},
        {kAtp, L"enabled"},
        {kAtp, L"ProductVersion"},
        {L"SYSTEM\\ControlSet001\\Control\\ProductOptions", L"ProductType"},
        {L"SOFTWARE\\Vexora\\Endpoint\\Common", L"szInstallDir64"},
    };
    for (const DWORD type : {REG_SZ, REG_BINARY, REG_DWORD, REG_MULTI_SZ}) {
        for (const auto& data : kHostileData) {
            ScratchRegistry registry;
            for (const auto& [key, value] : kValues) {
                registry.Set(key, value, type, data);
            }
            HealthRecord record;
            TestResultBits bits;
            GetVXCoreVersion(record);
            GetThottleMode(record);
            GetDATVersionFromReg(record);
            ReadCounters(record, {.hcmode = "postdatupdate"});
            ReadRepCommunicatorVersion(record);
            ReadAtpState(bits);
            EXPECT_FALSE(IsServerProduct());
            EXPECT_EQ(record.vxcore_build, 65535); // none of these is a version of five parts
            EXPECT_LE(record.throttle_mode, 3);
            EXPECT_EQ(record.rep_communicator_build, 0);
            for (const std::string& item : GetATPInfo()) {
                EXPECT_EQ(item.find('\0'), std::string::npos);
                EXPECT_LE(item.size(), data.size() + 11);
            }
        }
    }
}

} // namespace
} // namespace vantor
