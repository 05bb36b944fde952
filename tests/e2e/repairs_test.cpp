// What a run repairs in the registry, and how it traces the updater.
#include "e2e/local_receiver.h"
#include "e2e/program.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace vantor::e2e {
namespace {

namespace fs = std::filesystem;

constexpr char kService[] = R"(HKLM\SYSTEM\CurrentControlSet\Services\vxedisk)";
constexpr char kQuality[] = R"(HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\QualityCompat)";
const std::string kFailed = "Failed on initialization scoped access protection exclusion object.";
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

constexpr char kCid[] = "VXSHIELDGLOBAL\\GLOBAL]\n\"customerid";
constexpr char kLog[] = "DS\\DS]\n\"szVanTORLog";

/// The broken machine with one text of it replaced.
std::string Machine(const std::string& text, const std::string& other)
{
    std::string machine = kBrokenMachine;
    return machine.replace(machine.find(text), text.size(), other);
}

/// A text value of so many bytes: x and 0 in turn.
std::string Text(const std::string& value, std::size_t size)
{
    std::string bytes;
    while (bytes.size() < 3 * size) {
        bytes += "78,00,";
    }
    bytes.resize(size == 0 ? 0 : 3 * size - 1);
    return R"([HKEY_LOCAL_MACHINE\SOFTWARE\Vexora\AVSolution\)" + value + "\"=hex:" + bytes + '\n';
}

TEST(Repairs, BeforeAndAfter)
{
    const struct {
        std::vector<std::string> arguments;
        std::string machine;
        std::string start, deleteFlag; ///< afterwards
        unsigned bits;                 ///< 19 to 22 of the only pulse that arrives, if one does
        std::string cid = "";          ///< of the pulse
        int exitCode = 0;
    } kCases[] = {
        {{"/hcmode=postdatupdate", "/datupdatestatus=0"}, kBrokenMachine, "0x0", "", 5},
        {{"/hcmode=predatupdate"}, kBrokenMachine, "0x0", "", 5},
        {{"/hcmode=periodic"}, Machine("76,78,65,64,69,73,6b,00,00", "78,00,00"), "0x3", "", 5}, // not listed
        {{"/hcmode=periodic"}, Machine("20.4.0.112", "20.5"), "0x4", "", 1}, // a platform that is new enough
        {{"/hcmode=periodic"}, Machine("dword:00000004", "dword:00000000"), "0x0", "", 1},
        {{"/hcmode=periodic"}, Machine("DeleteFlag", "Another"), "0x0", "", 4},
        {{"/hcmode=periodic"}, "", "", "", 0},
        // Values that are too long, too short, odd or of another type: the list's end is never missed, and the customer
        // is what can be read of it.
        {{"/hcmode=periodic"}, Machine("dword:00000004", "hex:04") + Text(kCid, 0), "0x0", "", 5},
        {{"/hcmode=periodic"}, Machine("dword:00000004", "hex(b):04,00,00,00,00") + Text(kCid, 1), "0x0", "", 5},
        {{"/hcmode=periodic"}, Machine("hex(7):76", "hex(7):00,00,76") + Text(kCid, 3), "0x0", "", 5, "x"},
        {{"/hcmode=periodic"}, Machine("73,6b,00,00", "73,6b,00,78") + Text(kCid, 4), "0x0", "", 5, "xx"},
        {{"/hcmode=periodic"}, Machine("hex(7)", "hex(1)") + Text(kCid, 1 << 20), "0x3", "", 5},
        // A log path of 520 bytes or more ends the process before it does anything.
        {{"/hcmode=periodic"}, Machine("\"20.4.0.112\"", "hex:32") + Text(kLog, 519), "0x4", "", 1},
        {{"/hcmode=periodic"}, kBrokenMachine + Text(kLog, 520), "0x4", "0x1", 0, "", 3},
        {{"/hcmode=periodic"}, kBrokenMachine + Text(kLog, 1 << 20), "0x4", "0x1", 0, "", 3},
        {{"/uninstall"}, kBrokenMachine, "0x4", "0x1", 0},
    };
    for (const auto& row : kCases) {
        const std::string& mode = row.arguments.front();
        SCOPED_TRACE(mode);
        SetRegistry(row.machine);
        LocalReceiver receiver;
        const Outcome outcome = RunProgram(row.arguments);
        EXPECT_EQ(outcome.exitCode, row.exitCode);
        EXPECT_EQ(outcome.log.empty(), row.exitCode != 0);
        EXPECT_EQ(outcome.Logged(" WARN: This product is not configured for update etl tracing"),
                  mode == "/hcmode=predatupdate");
        auto service = RegistryValues(kService);
        EXPECT_EQ(service["Start"], row.start);
        EXPECT_EQ(service["DeleteFlag"], row.deleteFlag);
        EXPECT_EQ(service["Other"], row.machine.empty() ? "" : "kept");
        const bool setsQuality = mode == "/hcmode=postdatupdate";
        if (mode != "/hcmode=periodic") { // of a periodic run, the pulse tells enough
            EXPECT_EQ(RegistryValues(kQuality)[kQualityValue], setsQuality ? "0x0" : "");
        }
        const bool isSent = mode != "/uninstall" && row.exitCode == 0;
        const auto pulses = receiver.Pulses();
        ASSERT_EQ(pulses.size(), isSent ? 1u : 0u);
        EXPECT_EQ(receiver.ConnectionCount(), pulses.size());
        const TestResultBits results = isSent ? pulses[0].pulse.report.record.bitfield_test_results : TestResultBits();
        EXPECT_EQ(results.Word() >> 19 & 15, row.bits);
        EXPECT_EQ(results.Test(ResultBit::meltdown_compat), setsQuality);
        EXPECT_TRUE(!isSent || pulses[0].pulse.client["cid"] == row.cid) << pulses[0].pulse.client;
    }
}

TEST(Repairs, TheProductIsAskedForAccessBeforeEachAndLetGoAfterIt)
{
    const fs::path folder = ScratchFolder(), record = folder / "record.txt";
    fs::copy_file(WindowsTree("tests/modules/signed/vxeaaca.dll"), folder / "vxeaaca.dll");
    const auto directory = [](const char* value, const fs::path& path) {
        return '"' + std::string(value) + "\"=\"" + Escaped(WindowsPath(path)) + "\"\n";
    };
    const std::string machine =
        kBrokenMachine +
        ("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vexora\\Endpoint\\Common]\n" + directory("szInstallDir64", folder)) +
        directory("szInstallDir32", WindowsTree("tests/modules/exportless")); // comes second
    const std::string service = "Access requested for HKLM\\System\\CurrentControlSet\\Services\\vxedisk";
    const struct {
        std::string refused;
        std::string line; ///< logged of it
        unsigned bits;    ///< 19 to 22 of the pulse
    } kCases[] = {
        {"MatchRegistryKey", "TRACE: Failed on call GetRegistryKeyAccessToProcess().  " + service, 5},
        {"MatchRegistryValue", "TRACE: Failed on call GetRegistryValueAccessToProcess(). " + service + "\\**", 5},
        {"MatchFilePath",
         "TRACE: StopLogging: Failed on call AllowFilePathAccessToProcess().  Access requested for "
         "path:C:\\ProgramData\\Vexora\\Agent\\Logs\\*",
         5},
        {"key", "TRACE: GetvxediskStartValue: 4294967295", 15}, // neither value can be written
        {"", "TRACE: GetvxediskStartValue: 4", 5},
    };
    LocalReceiver receiver;
    for (const auto& row : kCases) {
        SCOPED_TRACE(row.refused);
        SetRegistry(machine);
        fs::remove(record);
        receiver.Forget();
        const Outcome outcome = RunProgram({"/hcmode=postdatupdate", "/datupdatestatus=0"},
                                           {"VXEAACA_RECORD=" + WindowsPath(record), "VXEAACA_REFUSE=" + row.refused});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_FALSE(outcome.Logged("TRACE: " + kFailed));
        EXPECT_TRUE(outcome.Logged(row.line));
        ASSERT_EQ(receiver.Pulses().size(), 1u);
        EXPECT_EQ(receiver.Pulses()[0].pulse.report.record.bitfield_test_results.Word() >> 19 & 15, row.bits);
    }
    // For each repair an exclusion of its own, which ends behind the change; then one for the trace.
    const std::string begin = "Create AddPolicy AddRule ";
    std::string seen;
    for (const std::string& call : ReadLines(record)) {
        const std::string name = call.substr(0, call.find(' ')) + ' ';
        const std::string state = call.substr(call.find('}') + 1); // of the driver, when its exclusion ends
        const bool isTold = (' ' + begin + "RemovePolicy Release ").find(' ' + name) != begin.npos;
        seen += !isTold ? "" : name == "RemovePolicy " ? name + state + ' ' : name;
    }
    EXPECT_EQ(seen, begin + "AddRule RemovePolicy  Start 4 Release " + begin +
                        "AddRule RemovePolicy  Start 0 Release " + begin + "RemovePolicy  Start 0 Release ");
}

/// Runs the program as a child of the product's updater.
Outcome RunUnderUpdater(std::vector<std::string> arguments)
{
    const fs::path updater = ScratchFolder() / "ScUpdate.exe";
    fs::copy_file(WindowsTree("tests/starter.exe"), updater, fs::copy_options::overwrite_existing);
    const fs::path log = ScratchFolder() / "updater.log";
    fs::remove(log);
    arguments.insert(arguments.begin(), WindowsPath(WindowsTree("vantor.exe")));
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

    const fs::path m_folder = WinePrefix() / "drive_c/ProgramData/Vexora/Agent/Logs";
};

TEST_F(TracesTest, TheRunBeforeAnUpdateStartsATraceAndTheRunAfterItStopsIt)
{
    const Outcome before = RunUnderUpdater({"/hcmode=predatupdate"});
    EXPECT_EQ(before.exitCode, 0);
    EXPECT_TRUE(before.Logged("TRACE: Now Logging."));
    EXPECT_EQ(before.log.back(), "TRACE: Starting etl tracing...");
    EXPECT_TRUE(before.Logged("TRACE: StartLogging: " + kFailed));

    const Outcome after = RunUnderUpdater({"/hcmode=postdatupdate", "/datupdatestatus=0"});
    EXPECT_EQ(std::vector<std::string>(after.log.end() - 3, after.log.end()),
              (std::vector<std::string>{"TRACE: StopLogging: " + kFailed, "TRACE: Stopped logging",
                                        "TRACE: Stopping etl tracing..."}));
}

TEST_F(TracesTest, AFolderThatIsALinkGetsNoTraceAndLosesNone)
{
    MakeTraces(12);
    const fs::path elsewhere = ScratchFolder() / "elsewhere";
    fs::rename(m_folder, elsewhere);
    fs::create_directory_symlink(elsewhere, m_folder);
    const Outcome outcome = RunUnderUpdater({"/hcmode=predatupdate"});
    fs::remove(m_folder);
    EXPECT_EQ(std::distance(fs::directory_iterator(elsewhere), fs::directory_iterator()), 13);
    EXPECT_TRUE(outcome.Logged(" WARN: No trace is written into a folder that is a link or lies behind one: "
                               "C:\\ProgramData\\Vexora\\Agent\\Logs\\"));
    EXPECT_EQ(outcome.log.back(), "ERROR: Delete of old log failed, so cannot proceed");
}

TEST_F(TracesTest, TheOldestGoUntilNineAreLeft)
{
    MakeTraces(9);
    EXPECT_TRUE(RunUnderUpdater({"/hcmode=predatupdate"}).Logged("TRACE: Starting etl tracing..."));
    EXPECT_EQ(Count(), 11); // a new one, which Wine leaves empty
    fs::remove_all(m_folder);
    fs::create_directories(m_folder);
    MakeTraces(13);
    const Outcome outcome = RunUnderUpdater({"/hcmode=predatupdate"});
    EXPECT_EQ(Count(), 11);
    EXPECT_TRUE(fs::exists(Trace(8)) && fs::exists(m_folder / "a.log"));
    EXPECT_TRUE(outcome.Logged("TRACE: ShouldStartETLTracing: " + kFailed));
    fs::remove_all(m_folder);
    EXPECT_TRUE(
        RunUnderUpdater({"/hcmode=predatupdate"}).log.back().starts_with("ERROR: Error: StartLogging FAILED!!: "));
}

} // namespace
} // namespace vantor::e2e
