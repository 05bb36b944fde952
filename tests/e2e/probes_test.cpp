// What the program reports of a machine, as the service receives it.
#include "e2e/local_service.h"
#include "e2e/program.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <list>
#include <memory>
#include <regex>

namespace vantor::e2e {
namespace {

/// A machine on which every field differs from its initial value; %DIRECTORY% stands for the product's.
constexpr char kRichMachine[] = R"(
[HKEY_LOCAL_MACHINE\SOFTWARE\Vexora\AVSolution\AVS\AVS]
"szVXCoreVersion"="64.1.90.12345.7"
[HKEY_LOCAL_MACHINE\SOFTWARE\Vexora\AVSolution\DS\DS]
"dwUpdateThrottleMode"=dword:00000002
"dwContentMajorVersion"=dword:0000146e
"dwContentMinorVersion"=dword:00000007
"dwRestartCount"=dword:0000012c
"dwRestartCountTotal"=dword:00000004
[HKEY_LOCAL_MACHINE\SOFTWARE\Vexora\AVSolution\scannerdata\ContentRefresh]
"dwCorruptionCount"=dword:00000005
"dwTotalCorruptionCount"=dword:00000006
[HKEY_LOCAL_MACHINE\SOFTWARE\Vexora\AVSolution\VXSHIELDGLOBAL\GLOBAL]
"vriuseipv6"=dword:00000001
[HKEY_LOCAL_MACHINE\SOFTWARE\Vexora\Endpoint\AV]
"ProductVersion"="11.2.0"
[HKEY_LOCAL_MACHINE\SOFTWARE\Vexora\Endpoint\ATP]
"enabled"=dword:00000001
"observeModeEnabled"=dword:00000001
"ProductVersion"="11.3.0"
"BuildNumber"="1391"
[HKEY_LOCAL_MACHINE\SOFTWARE\Vexora\Endpoint\Common]
"szInstallDir32"="C:\\nothing here"
"szInstallDir64"="%DIRECTORY%"
[HKEY_LOCAL_MACHINE\SOFTWARE\Vexora\VSC]
"MarketReleaseName"="Home"
"MarketReleaseVer"="16.0"
[HKEY_LOCAL_MACHINE\SOFTWARE\VxeAV]
"VersionInfo"="9.1"
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\QualityCompat]
"cadca5fe-87d3-4b96-b7fb-a231484277cc"=dword:00000000
[HKEY_LOCAL_MACHINE\SYSTEM\ControlSet001\Control\ProductOptions]
"ProductType"="ServerNT"
[HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\FileSystem]
"NtfsEnableDirCaseSensitivity"=dword:00000003
[HKEY_LOCAL_MACHINE\SYSTEM\ControlSet001\Control\Class\{4d36e968-e325-11ce-bfc1-08002be10318}\0000]
"DriverDesc"="First adapter"
[HKEY_LOCAL_MACHINE\SYSTEM\ControlSet001\Control\Class\{4d36e968-e325-11ce-bfc1-08002be10318}\0001]
"DriverDesc"="Second adapter"
[HKEY_LOCAL_MACHINE\HARDWARE\DESCRIPTION\System\CentralProcessor\0]
"Identifier"="Sample processor"
)";

using WireBytes = std::array<std::uint8_t, HealthRecord::kWireSize>;

/// The report of the only pulse that arrives during a run.
Report ReportOf(std::vector<std::string> arguments)
{
    LocalService service;
    EXPECT_EQ(RunProgram(std::move(arguments)).exitCode, 0);
    const auto pulses = service.Pulses();
    EXPECT_EQ(pulses.size(), 1u);
    return pulses.empty() ? Report() : pulses[0].pulse.report;
}

TEST(Probes, EveryFieldOfARichMachineIsReported)
{
    const auto folder = ScratchFolder();
    std::filesystem::copy_file(VANTOR_TEST_MODULES "/versioned_german.dll", folder / "ReputationCommunicator.dll");
    const std::string doubled = std::regex_replace(WindowsPath(folder), std::regex(R"(\\)"),
                                                   R"(\\)"
                                                   R"(\\)");
    SetRegistry(std::regex_replace(kRichMachine, std::regex("%DIRECTORY%"), doubled));

    std::list<StandIn> programs;
    for (const char* const name : {"WinWord.exe", "excel.exe", "OUTLOOK.EXE", "chrome.exe", "msedge.exe", "vxemms.exe",
                                   "vxtray.exe", "vxevtps.exe", "Teams.exe"}) {
        programs.emplace_back(name);
    }
    programs.emplace_back("VxShield.exe", 15); // what every process takes under Wine comes on top: some 7 MiB
    programs.emplace_back("vxeatp.exe", 95);

    WireBytes expected = {14, 3,    10,   0,    0,    0,    0, 0,  0xBA, 0x47, 1, 64, 1,    90,  0x39, 0x30,
                          7,  0x6E, 0x14, 7,    0,    1,    0, 14, 43,   0,    2, 7,  44,   3,   0xFF, 0xFF,
                          2,  10,   0x80, 0xFF, 0x87, 0x1F, 0, 0,  0,    0,    0, 0,  0x64, 0x86};
    const Report periodic = ReportOf({"/hcmode=periodic"});
    EXPECT_EQ(EncodeHealthRecord(periodic.record), expected);
    EXPECT_TRUE(periodic.textItems.empty());

    expected[1] = 2; // the mode, and what depends on it: content version, outcome of the update, counters
    expected[17] = expected[18] = expected[19] = expected[20] = 0xFF;
    expected[36] = 0x86;
    expected[42] = 255;
    expected[43] = 4;
    EXPECT_EQ(EncodeHealthRecord(ReportOf({"/hcmode=postdatupdate", "/datupdatestatus=5"}).record), expected);

    expected[1] = 1;
    expected[17] = 0x0B, expected[18] = 0, expected[19] = 12, expected[20] = 0;
    expected[36] = 0x87;
    expected[42] = 5;
    expected[43] = 6;
    const Report preUpdate = ReportOf({"/hcmode=predatupdate", "/datver=11.12"});
    EXPECT_EQ(EncodeHealthRecord(preUpdate.record), expected);
    EXPECT_EQ(preUpdate.textItems,
              (std::vector<std::string>{"11.2.0", "9.1", "HSQ_Home", "HSQ_16.0", "Sample processor", "0x0409", "11.3.0",
                                        "1391", "First adapter", "Second adapter"}));
}

TEST(Probes, AnEmptyMachineReportsFallbacks)
{
    SetRegistry();
    const WireBytes expected = {14,   1,    10,   0,    0,    0, 0, 0,  0xBA, 0x47, 1, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 1, 0, 14, 43,   0,    0, 0,    0,    0,    0,    0,
                                0,    0,    0,    0,    1,    0, 0, 0,  0,    0,    0, 0,    0x64, 0x86};
    const Report report = ReportOf({"/hcmode=predatupdate"});
    EXPECT_EQ(EncodeHealthRecord(report.record), expected);
    EXPECT_EQ(report.textItems,
              (std::vector<std::string>{"Unavailable", "Unavailable", "0x0409", "Unavailable", "Unavailable"}));
}

TEST(Probes, TheProgramExportsItsVersionReader)
{
    const auto close = [](FILE* pipe) { ::pclose(pipe); };
    const std::unique_ptr<FILE, decltype(close)> pipe(
        ::popen("x86_64-w64-mingw32-objdump -p '" VANTOR_PROGRAM "'", "r"), close);
    ASSERT_TRUE(pipe);
    std::string text(1 << 20, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), pipe.get()));
    EXPECT_TRUE(std::regex_search(text, std::regex(R"(\[ *0\] NewFileVersionInfo\n)")));
}

} // namespace
} // namespace vantor::e2e
