#include "e2e/program.h"

#include "vantor_version.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <openssl/evp.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <utility>

namespace vantor::e2e {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kStampLength = 19; // "26/11/21 08:41:36: "

/// Nothing that a probe reads is there; reports go here; the shell is not the explorer.exe that Wine starts at times.
constexpr char kEmptyMachine[] = R"(REGEDIT4

[-HKEY_LOCAL_MACHINE\SOFTWARE\Vexora]
[-HKEY_LOCAL_MACHINE\SOFTWARE\VxeAV]
[-HKEY_LOCAL_MACHINE\SOFTWARE\WOW6432Node\Vexora]
[-HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Services\vxedisk]
[-HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\Class\{4d36e967-e325-11ce-bfc1-08002be10318}]
[-HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\QualityCompat]
[-HKEY_LOCAL_MACHINE\SYSTEM\ControlSet001\Control\ProductOptions]
[-HKEY_LOCAL_MACHINE\SYSTEM\ControlSet001\Control\Class\{4d36e968-e325-11ce-bfc1-08002be10318}]
[-HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Internet Settings\Connections]
[-HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Internet Settings\Connections]
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows NT\CurrentVersion\Winlogon]
"Shell"="C:\\Windows\\Desktop.exe"
[HKEY_LOCAL_MACHINE\HARDWARE\DESCRIPTION\System\CentralProcessor\0]
"Identifier"=-
[HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\FileSystem]
"NtfsEnableDirCaseSensitivity"=-
[HKEY_LOCAL_MACHINE\SOFTWARE\Classes\CLSID\{0f87369f-a4e5-4cfc-bd3e-73e6154572dd}\InprocServer32]
@="C:\\windows\\system32\\taskschd.dll"
[HKEY_LOCAL_MACHINE\SOFTWARE\Vexora\AVSolution\SetVriLocalHost]

)";

std::string ReadFile(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> ReadLog(const fs::path& path)
{
    std::vector<std::string> lines = ReadLines(path);
    for (std::string& line : lines) {
        // Only a line of ours has a stamp; a reply's headers in the log have none.
        const bool isStamped = line.size() >= kStampLength && line[2] == '/' && line[kStampLength - 2] == ':';
        line.erase(line.find_last_not_of('\r') + 1).erase(0, isStamped ? kStampLength : 0);
    }
    return lines;
}

/// Starts a program of this machine, its output in files, and returns its process id.
pid_t Start(const std::vector<std::string>& command, const fs::path& output, const fs::path& error)
{
    constexpr int kWrite = O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC;

    std::vector<char*> arguments;
    for (const std::string& word : command) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);

    const pid_t child = ::fork();
    if (child == 0) {
        // Wine's server outlives the run; it must not keep connections of the receiver open.
        ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
        ::dup2(::open(output.c_str(), kWrite, 0644), STDOUT_FILENO);
        ::dup2(::open(error.c_str(), kWrite, 0644), STDERR_FILENO);
        ::execvp(arguments[0], arguments.data());
        ::_exit(127);
    }
    return child;
}

Outcome RunUnderWine(std::vector<std::string> command, std::vector<std::string> settings = {})
{
    const fs::path output = ScratchFolder() / "stdout.txt";
    const fs::path error = ScratchFolder() / "stderr.txt";
    int status = 0; // the time limit is the script's that runs it
    EXPECT_GT(::waitpid(Start(UnderWine(std::move(command), std::move(settings)), output, error), &status, 0), 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(output), ReadFile(error), {}};
}

std::string CopyOfStandIn(const std::string& name)
{
    fs::copy_file(WindowsTree("tests/process_stand_in.exe"), ScratchFolder() / name);
    return ScratchFolder() / name;
}

} // namespace

bool Outcome::Logged(const std::string& line) const
{
    return std::find(log.begin(), log.end(), line) != log.end();
}

bool Outcome::Logged(const std::string& line, const Codes& codes) const
{
    return std::ranges::any_of(codes, [&](const std::string& code) { return Logged(line + code); });
}

fs::path ScratchFolder()
{
    const auto* const test = ::testing::UnitTest::GetInstance()->current_test_info();
    const fs::path folder = fs::path(VANTOR_E2E_DIRECTORY) / test->test_suite_name() / test->name();
    static fs::path emptied;
    if (std::exchange(emptied, folder) != folder) {
        fs::remove_all(folder);
        fs::create_directories(folder);
    }
    return folder;
}

std::vector<std::string> ReadLines(const fs::path& path)
{
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string WindowsTree(const std::string& file)
{
    const char* const tree = std::getenv("VANTOR_WINDOWS_TREE");
    return (tree ? fs::path(tree) : fs::path(VANTOR_SOURCE_DIRECTORY "/build/mingw")) / file;
}

fs::path WinePrefix()
{
    const char* const name = std::getenv("VANTOR_E2E_PREFIX");
    return fs::path(VANTOR_SOURCE_DIRECTORY "/build/wine") / (name ? name : "e2e");
}

std::string WindowsPath(const fs::path& path)
{
    std::string text = "Z:" + path.string();
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
}

std::string Escaped(const std::string& path)
{
    return std::regex_replace(path, std::regex("\\\\"), "\\\\");
}

Outcome RunProgram(std::vector<std::string> arguments, std::vector<std::string> settings)
{
    static int runs = 0;
    const fs::path logFile = ScratchFolder() / ("run" + std::to_string(++runs) + ".log");
    arguments.push_back("/logfile=" + WindowsPath(logFile));
    return RunProgram(WindowsTree("vantor.exe"), std::move(arguments), logFile, std::move(settings));
}

Outcome RunProgram(const fs::path& program, std::vector<std::string> arguments, const fs::path& logFile,
                   std::vector<std::string> settings)
{
    arguments.insert(arguments.begin(), program.string());
    Outcome outcome = RunUnderWine(std::move(arguments), std::move(settings));
    outcome.log = ReadLog(logFile);
    return outcome;
}

void SetRegistry(const std::string& lines)
{
    const fs::path file = ScratchFolder() / "state.reg";
    std::ofstream(file) << kEmptyMachine << lines;
    const Outcome outcome = RunUnderWine({"reg", "import", WindowsPath(file)});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.standardOutput << outcome.standardError;
}

std::map<std::string, std::string> RegistryValues(const std::string& key)
{
    std::map<std::string, std::string> values;
    std::istringstream output(RunUnderWine({"reg", "query", key}).standardOutput);
    const std::regex value("    (.*)    REG_[A-Z_]+    (.*)\r");
    std::smatch parts;
    for (std::string line; std::getline(output, line);) {
        if (std::regex_match(line, parts, value)) {
            values[parts[1]] = parts[2];
        }
    }
    return values;
}

std::string WithoutVersion(std::string text)
{
    const unsigned char bytes[] = {VANTOR_VERSION_MAJOR,        VANTOR_VERSION_MINOR,      VANTOR_VERSION_PATCH,
                                   VANTOR_VERSION_BUILD & 0xFF, VANTOR_VERSION_BUILD >> 8, 0};
    char base64[9];
    ::EVP_EncodeBlock(reinterpret_cast<unsigned char*>(base64), bytes, sizeof bytes);
    std::ostringstream fields;
    fields << "\"vantor_major\": " << VANTOR_VERSION_MAJOR << " \"vantor_minor\": " << VANTOR_VERSION_MINOR
           << " \"vantor_patch\": " << VANTOR_VERSION_PATCH << " \"vantor_build\": " << VANTOR_VERSION_BUILD;
    const std::pair<std::string, const char*> kPlaceholders[] = {
        {"\"pv\":\"" VANTOR_PRODUCT_VERSION_TEXT "\"", "\"pv\":\"<version>\""},
        {fields.str(), "<version fields>"},
        {base64, "<version bytes>"}};
    for (const auto& [version, placeholder] : kPlaceholders) {
        if (const std::size_t at = text.find(version); at != std::string::npos) {
            text.replace(at, version.size(), placeholder);
        }
    }
    return text;
}

void ExpectLog(const Outcome& outcome, const std::string& file)
{
    // Which of the server's schemes is the first one differs between releases of Wine.
    const std::regex varying(
        R"(0x[0-9a-f]+|rid":-?[0-9]+|Z:\\.*|(From|On): [-0-9: ]+|Length: 2[0-9]+|by the server = [12])");
    std::vector<std::string> actual;
    std::ofstream copy(ScratchFolder() / file);
    for (const std::string& line : outcome.log) {
        if (line.find("Keep-Alive: timeout=") != std::string::npos) {
            continue; // where it stands among the headers depends on the release of cpp-httplib
        }
        actual.push_back(WithoutVersion(std::regex_replace(line, varying, "~")));
        copy << actual.back() << '\n';
    }
    EXPECT_EQ(actual, ReadLines(VANTOR_SOURCE_DIRECTORY "/tests/e2e/" + file));
}

std::vector<std::string> UnderWine(std::vector<std::string> command, std::vector<std::string> settings)
{
    settings.insert(settings.begin(), {VANTOR_SOURCE_DIRECTORY "/tools/wine-run", WinePrefix().filename()});
    settings.insert(settings.end(), command.begin(), command.end());
    return settings;
}

Background::Background(std::vector<std::string> command, const std::string& name, const std::string& ready)
    : m_output(ScratchFolder() / (name + ".txt"))
{
    // It ends with this process, and in a minute in any case.
    command.insert(command.begin(), {"setpriv", "--pdeathsig=TERM", "timeout", "--kill-after=5", "60"});
    m_process = Start(command, m_output, m_output);
    for (int tries = 0; tries < 1000 && Output().find(ready) == std::string::npos; ++tries) {
        ::usleep(10'000);
    }
    EXPECT_NE(Output().find(ready), std::string::npos) << name << ": " << Output();
}

Background::~Background()
{
    ::kill(m_process, SIGTERM);
    ::waitpid(m_process, nullptr, 0);
}

std::string Background::Output() const
{
    return ReadFile(m_output);
}

StandIn::StandIn(const std::string& name, int mebibytes)
    : Background(UnderWine({CopyOfStandIn(name), std::to_string(mebibytes)}), name, "ready")
{
}

} // namespace vantor::e2e
