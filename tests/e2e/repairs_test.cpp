// What a run repairs in the registry, and how it traces the updater.
#include "e2e/local_service.h"
#include "e2e/program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace vantor::e2e {
namespace {

namespace fs = std::filesystem;

constexpr char kService[] = R"(HKLM\SYSTEM\CurrentControlSet\Services\vxedisk)";
constexpr char kQuality[] = R"(HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\QualityCompat)";
constexpr char kQualityValue[] = "cadca5fe-87d3-4b96-b7fb-a231484277cc";

/// A driver that was left to be deleted, disabled although the disk stack lists it, on an old product platform.
constexpr char kBrokenMachine[] = R"(
[HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Services\vxedisk]
"DeleteFlag"=dword:00000001
"Start"=dword:00000004
"Other"="kept"
[HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\Class\{4d36e967-e325-11ce-bfc1-08002be10318}]
"UpperFilters"=hex(7):76,78,65,64,69,73,6b,00,00
[HKEY_LOCAL_MACHINE\SOFTWARE\WOW6432Node\Vexora\SystemCore]
"system_core_version"="20.4.0.112"
)";

/// The broken machine with one text of it replaced.
std::string Machine(const std::string& text, const std::string& other)
{
    std::string machine = kBrokenMachine;
    return machine.replace(machine.find(text), text.size(), other);
}

/// Bits 19 to 22 of the only pulse that arrives.
unsigned DriverBits(const LocalService& service)
{
    const auto pulses = service.Pulses();
    EXPECT_EQ(pulses.size(), 1u);
    return pulses.empty() ? 0 : pulses[0].pulse.report.record.bitfield_test_results.Word() >> 19 & 15;
}

TEST(Repairs, BeforeAndAfter)
{
    const struct {
        std::vector<std::string> arguments;
        std::string machine;
        std::string start, deleteFlag, quality; ///< afterwards
        unsigned bits;
    } kCases[] = {
        {{"/hcmode=postdatupdate", "/datupdatestatus=0"}, kBrokenMachine, "0x0", "", "0x0", 5},
        {{"/hcmode=predatupdate"}, kBrokenMachine, "0x0", "", "", 5},
        {{"/hcmode=periodic"}, Machine("76,78,65,64,69,73,6b,00,00", "78,00,00"), "0x3", "", "", 5}, // not listed
        {{"/hcmode=periodic"}, Machine("20.4.0.112", "20.5"), "0x4", "", "", 1}, // a platform that is new enough
        {{"/hcmode=periodic"}, Machine("dword:00000004", "dword:00000000"), "0x0", "", "", 1},
        {{"/hcmode=periodic"}, Machine("DeleteFlag", "Another"), "0x0", "", "", 4},
        {{"/hcmode=periodic"}, "", "", "", "", 0},
        // Values that are too long, too short, odd or of another type: the list's end is never missed.
        {{"/hcmode=periodic"}, Machine("dword:00000004", "hex:04"), "0x0", "", "", 5},
        {{"/hcmode=periodic"}, Machine("dword:00000004", "hex(b):04,00,00,00,00"), "0x0", "", "", 5},
        {{"/hcmode=periodic"}, Machine("hex(7):76", "hex(7):00,00,76"), "0x0", "", "", 5},
        {{"/hcmode=periodic"}, Machine("73,6b,00,00", "73,6b,00,78"), "0x0", "", "", 5},
        {{"/hcmode=periodic"}, Machine("hex(7)", "hex(1)"), "0x3", "", "", 5},
        {{"/hcmode=periodic"}, Machine("\"20.4.0.112\"", "hex:32"), "0x4", "", "", 1},
        {{"/uninstall"}, kBrokenMachine, "0x4", "0x1", "", 0},
    };
    for (const auto& row : kCases) {
        SCOPED_TRACE(row.arguments.front());
        SetRegistry(row.machine);
        LocalService service;
        EXPECT_EQ(RunProgram(row.arguments).exitCode, 0);
        EXPECT_EQ(RegistryValue(kService, "Start"), row.start);
        EXPECT_EQ(RegistryValue(kService, "DeleteFlag"), row.deleteFlag);
        EXPECT_EQ(RegistryValue(kService, "Other"), row.machine.empty() ? "" : "kept");
        EXPECT_EQ(RegistryValue(kQuality, kQualityValue), row.quality);
        EXPECT_EQ(row.arguments.front() == "/uninstall" ? 0 : DriverBits(service), row.bits);
    }
}

TEST(Repairs, TheProductIsAskedForAccessBeforeEachAndLetGoAfterIt)
{
    const fs::path folder = ScratchFolder();
    fs::copy_file(VANTOR_TEST_MODULES "/modules/signed/vxeaaca.dll", folder / "vxeaaca.dll");
    SetRegistry(kBrokenMachine + ("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vexora\\Endpoint\\Common]\n\"szInstallDir64\"=\"" +
                                  Escaped(WindowsPath(folder)) + "\"\n"));
    const fs::path record = folder / "record.txt";
    const Outcome outcome = RunProgram({"/hcmode=periodic"}, {"VXEAACA_RECORD=" + WindowsPath(record)});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_FALSE(outcome.Logged("TRACE: Failed on initialization scoped access protection exclusion object."));

    std::ifstream file(record);
    std::vector<std::string> calls;
    for (std::string line; std::getline(file, line);) {
        calls.push_back(line.substr(0, line.find_first_of(" \r")));
    }
    const std::vector<std::string> wanted = {"Create", "AddPolicy", "AddRule", "AddRule", "RemovePolicy", "Release"};
    std::vector<std::string> seen;
    std::copy_if(calls.begin(), calls.end(), std::back_inserter(seen), [&wanted](const std::string& call) {
        return std::find(wanted.begin(), wanted.end(), call) != wanted.end();
    });
    std::vector<std::string> twice = wanted; // once for each repair, the first ended before the second
    twice.insert(twice.end(), wanted.begin(), wanted.end());
    EXPECT_EQ(seen, twice);
    EXPECT_EQ(RegistryValue(kService, "Start"), "0x0");
}

/// Runs the program as a child of the product's updater.
Outcome RunUnderUpdater(std::vector<std::string> arguments)
{
    const fs::path updater = ScratchFolder() / "ScUpdate.exe";
    fs::copy_file(VANTOR_TEST_MODULES "/starter.exe", updater, fs::copy_options::overwrite_existing);
    const fs::path log = ScratchFolder() / "updater.log";
    fs::remove(log);
    arguments.insert(arguments.begin(), WindowsPath(VANTOR_PROGRAM));
    arguments.push_back("/logfile=" + WindowsPath(log));
    return RunProgram(updater, std::move(arguments), log);
}

class TracesTest : public ::testing::Test {
protected:
    TracesTest()
    {
        SetRegistry();
        fs::remove_all(m_folder);
        fs::create_directories(m_folder);
    }
    ~TracesTest() override { fs::remove_all(m_folder); }

    /// The later the name, the older the file. Beside them lies one that is no trace.
    void MakeTraces(int count)
    {
        std::ofstream(m_folder / "a.log") << "no trace";
        for (int number = 0; number < count; ++number) {
            std::ofstream(Trace(number)) << "trace";
            fs::last_write_time(Trace(number), fs::file_time_type::clock::now() - std::chrono::hours(1 + number));
        }
    }
    fs::path Trace(int number) const { return m_folder / ("scupdateETL_" + std::to_string(100 + number) + ".log"); }
    std::ptrdiff_t Count() const { return std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()); }

    const fs::path m_folder = VANTOR_SOURCE_DIRECTORY "/build/wine/e2e/drive_c/ProgramData/Vexora/Agent/Logs";
};

TEST_F(TracesTest, TheRunBeforeAnUpdateStartsATraceAndTheRunAfterItStopsIt)
{
    const Outcome before = RunUnderUpdater({"/hcmode=predatupdate"});
    EXPECT_EQ(before.exitCode, 0);
    EXPECT_TRUE(before.Logged("TRACE: Now Logging."));
    EXPECT_EQ(before.log.back(), "TRACE: Starting etl tracing...");
    EXPECT_TRUE(
        before.Logged("TRACE: StartLogging: Failed on initialization scoped access protection exclusion object."));

    const Outcome after = RunUnderUpdater({"/hcmode=postdatupdate", "/datupdatestatus=0"});
    EXPECT_EQ(std::vector<std::string>(after.log.end() - 3, after.log.end()),
              (std::vector<std::string>{
                  "TRACE: StopLogging: Failed on initialization scoped access protection exclusion object.",
                  "TRACE: Stopped logging", "TRACE: Stopping etl tracing..."}));
}

TEST_F(TracesTest, AnybodyElseStartsNone)
{
    const Outcome outcome = RunProgram({"/hcmode=predatupdate"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.log.back(), " WARN: This product is not configured for update etl tracing");
}

TEST_F(TracesTest, TheOldestGoUntilNineAreLeft)
{
    MakeTraces(9);
    EXPECT_TRUE(RunUnderUpdater({"/hcmode=predatupdate"}).Logged("TRACE: Starting etl tracing..."));
    EXPECT_EQ(Count(), 10); // Wine writes no trace of its own
    MakeTraces(13);
    const Outcome outcome = RunUnderUpdater({"/hcmode=predatupdate"});
    EXPECT_EQ(Count(), 10);
    EXPECT_TRUE(fs::exists(Trace(8)) && fs::exists(m_folder / "a.log"));
    EXPECT_TRUE(outcome.Logged(
        "TRACE: ShouldStartETLTracing: Failed on initialization scoped access protection exclusion object."));
}

} // namespace
} // namespace vantor::e2e
