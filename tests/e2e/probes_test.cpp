// What the program reports of a machine, as the receiver receives it.
#include "e2e/local_receiver.h"
#include "e2e/program.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <list>
#include <regex>

namespace vantor::e2e {
namespace {

using WireBytes = std::array<std::uint8_t, HealthRecord::kWireSize>;

/// The report of the only pulse that arrives during a run.
Report ReportOf(std::vector<std::string> arguments)
{
    LocalReceiver receiver;
    EXPECT_EQ(RunProgram(std::move(arguments)).exitCode, 0);
    const auto pulses = receiver.Pulses();
    EXPECT_EQ(pulses.size(), 1u);
    return pulses.empty() ? Report() : pulses[0].pulse.report;
}

TEST(Probes, EveryFieldOfARichMachineIsReported)
{
    const auto folder = ScratchFolder();
    std::filesystem::copy_file(WindowsTree("tests/versioned_german.dll"), folder / "ReputationCommunicator.dll");
    std::ifstream file(VANTOR_SOURCE_DIRECTORY "/tests/e2e/rich_machine.reg");
    const std::string machine(std::istreambuf_iterator<char>(file), {});
    SetRegistry(std::regex_replace(machine, std::regex("%DIRECTORY%"), Escaped(WindowsPath(folder))));

    std::list<StandIn> programs;
    for (const char* const name : {"WinWord.exe", "excel.exe", "OUTLOOK.EXE", "chrome.exe", "msedge.exe", "vxemms.exe",
                                   "vxtray.exe", "vxevtps.exe", "Teams.exe"}) {
        programs.emplace_back(name);
    }
    programs.emplace_back("VxShield.exe", 15); // what every process takes under Wine comes on top: some 7 MiB
    programs.emplace_back("vxeatp.exe", 95);

    WireBytes expected = {14, 3,    10,   0,    0,    0,    0, 0, 0xBA, 0x47, 1, 64, 1,    90,  0x39, 0x30,
                          7,  0x6E, 0x14, 7,    0,    0,    0, 0, 0,    0,    2, 7,  44,   3,   0xFF, 0xFF,
                          2,  10,   0x80, 0xFF, 0x87, 0x1F, 0, 0, 0,    0,    0, 0,  0x64, 0x86};
    expected[21] = VANTOR_VERSION_MAJOR, expected[22] = VANTOR_VERSION_MINOR, expected[23] = VANTOR_VERSION_PATCH;
    expected[24] = VANTOR_VERSION_BUILD & 0xFF, expected[25] = VANTOR_VERSION_BUILD >> 8;
    const Report periodic = ReportOf({"/hcmode=periodic"});
    EXPECT_EQ(EncodeHealthRecord(periodic.record), expected);
    EXPECT_TRUE(periodic.textItems.empty());

    expected[1] = 2; // the mode, and what depends on it: content version, outcome of the update, counters
    expected[17] = expected[18] = expected[19] = expected[20] = 0xFF;
    expected[36] = 0x86, expected[42] = 255, expected[43] = 4;
    EXPECT_EQ(EncodeHealthRecord(ReportOf({"/hcmode=postdatupdate", "/datupdatestatus=5"}).record), expected);

    expected[1] = 1;
    expected[17] = 0x0B, expected[18] = 0, expected[19] = 12, expected[20] = 0;
    expected[36] = 0x87, expected[42] = 5, expected[43] = 6;
    const Report preUpdate = ReportOf({"/hcmode=predatupdate", "/datver=11.12"});
    EXPECT_EQ(EncodeHealthRecord(preUpdate.record), expected);
    // Wine 10 keeps no processor where it cannot ask the system for one.
    const bool hasProcessor =
        RegistryValues(R"(HKLM\HARDWARE\DESCRIPTION\System\CentralProcessor\0)").contains("Identifier");
    const std::string processor = hasProcessor ? "Sample processor" : "Unavailable";
    EXPECT_EQ(preUpdate.textItems,
              (std::vector<std::string>{"11.2.0", "9.1", "HSQ_Home", "HSQ_16.0", processor, "0x0409", "11.3.0", "1391",
                                        "First adapter", "Second adapter"}));
}

} // namespace
} // namespace vantor::e2e
