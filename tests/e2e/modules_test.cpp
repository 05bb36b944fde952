// Which DLLs the program loads, and what it does without one.
#include "e2e/local_receiver.h"
#include "e2e/program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace vantor::e2e {
namespace {

namespace fs = std::filesystem;

/// The setting that has Wine load DLLs as these words say, its own or others, and go without what the tests never need.
std::string Load(const std::string& order)
{
    return "WINEDLLOVERRIDES=mscoree,mshtml=;" + order;
}

TEST(Modules, PlantedOnesAreNotLoaded)
{
    const fs::path beside = ScratchFolder();
    const fs::path current = ScratchFolder() / "current";
    const fs::path tests = fs::current_path();
    fs::create_directories(current);
    for (const std::string name : {"winhttp", "wintrust", "ws2_32"}) {
        fs::copy_file(WindowsTree("tests/versioned_german.dll"), beside / (name + ".dll"));
        fs::copy_file(WindowsTree("tests/versioned_german.dll"), current / (name + ".dll"));
    }
    fs::copy_file(WindowsTree("vantor.exe"), beside / "vantor.exe");
    // Wine prefers its own DLLs, a planted one only where it is told to. It cannot be told to for version, dnsapi and
    // crypt32: its own DLLs load these, too, and take a planted one whatever the program chose.
    const std::string order = Load("winhttp,wintrust,ws2_32=n,b");
    const auto loaded = [&] {
        const auto isTrace = [](const auto& file) { return file.path().extension() == ".loaded"; };
        return std::count_if(fs::recursive_directory_iterator(beside), {}, isTrace);
    };
    SetRegistry();
    LocalReceiver receiver;
    fs::current_path(current);
    const std::vector<std::string> arguments = {"/hcmode=postdatupdate", "/datupdatestatus=0"};
    EXPECT_EQ(RunProgram(beside / "vantor.exe", arguments, "", {order}).exitCode, 0);
    fs::current_path(tests);
    EXPECT_EQ(loaded(), 0);
    EXPECT_EQ(receiver.Pulses().size(), 1u);
    RunProgram("rundll32", {WindowsPath(beside / "winhttp.dll") + ",None"}, "", {order}); // asked for by its path
    EXPECT_EQ(loaded(), 1);
}

/// Signs a copy of the program with this certificate of the test authorities.
void SignProgram(const std::string& signer, const fs::path& copy)
{
    const std::string key = VANTOR_PKI_DIRECTORY "/" + signer;
    const std::string command = "osslsigncode sign -certs " + key + ".pem -key " + key + ".key -h sha256 -in '" +
                                WindowsTree("vantor.exe") + "' -out '" + copy.string() + "' >/dev/null";
    fs::remove(copy);
    ASSERT_EQ(std::system(command.c_str()), 0);
}

TEST(Modules, TheProductsOwnMustBeOfTheProgramsPublisher)
{
    const fs::path program = ScratchFolder() / "vantor.exe";
    const fs::path log = ScratchFolder() / "signed.log";
    const fs::path record = ScratchFolder() / "record.txt";
    fs::copy_file(WindowsTree("tests/modules/signed/vxeaaca.dll"), ScratchFolder() / "vxeaaca.dll");
    for (const std::string signer : {"server-a", "code-signer"}) { // the module's is the second
        SCOPED_TRACE(signer);
        SignProgram(signer, program);
        SetRegistry();
        fs::remove(log);
        const Outcome outcome =
            RunProgram(program, {"/hcmode=postdatupdate", "/datupdatestatus=0", "/logfile=" + WindowsPath(log)}, log,
                       {"VXEAACA_RECORD=" + WindowsPath(record)});
        const std::string module = WindowsPath(ScratchFolder() / "vxeaaca.dll");
        EXPECT_EQ(outcome.Logged(" WARN: A module of the product is not used: " + module +
                                 ": its publisher is not this program's"),
                  signer == "server-a");
        EXPECT_EQ(fs::exists(record), signer == "code-signer");
    }
}

TEST(Modules, WithoutOneItsStageFailsAndTheRunGoesOn)
{
    const struct {
        std::string module;
        const char* line;
        std::size_t pulses;
    } kCases[] = {
        {"winhttp", "ERROR: Send telemetry failed: this Windows lacks winhttp.dll: error 126", 0},
        {"crypt32", "ERROR: Send telemetry failed: this Windows lacks crypt32.dll: error 126", 0},
        {"wintrust", " WARN: No module of the product can be checked: this Windows lacks wintrust.dll: error 126", 1},
    };
    for (const auto& [module, line, pulses] : kCases) {
        SCOPED_TRACE(module);
        SetRegistry();
        LocalReceiver receiver;
        const Outcome outcome = RunProgram({"/hcmode=postdatupdate", "/datupdatestatus=0"}, {Load(module + "=")});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_TRUE(outcome.Logged(line));
        EXPECT_EQ(outcome.log.back(), "TRACE: Stopping etl tracing...");
        EXPECT_EQ(receiver.Pulses().size(), pulses);
    }
}

} // namespace
} // namespace vantor::e2e
