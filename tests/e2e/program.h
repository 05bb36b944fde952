// Runs the built program under Wine and reads what it left behind.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace vantor::e2e {

/// The codes, as log lines name them, that Windows and the releases of Wine give one failure.
using Codes = std::vector<std::string>;
inline const Codes kNoTls = {"ERROR_WINHTTP_SECURE_FAILURE 12175", "ERROR_WINHTTP_SECURE_CHANNEL_ERROR 12157"};
inline const Codes kBrokenOff = {"ERROR_WINHTTP_CONNECTION_ERROR 12030", "ERROR_WINHTTP_INVALID_SERVER_RESPONSE 12152",
                                 "Unknown error (10054) 10054"};
inline const Codes kSilent = {"ERROR_WINHTTP_TIMEOUT 12002", "Unknown error (10060) 10060"};

/// The outcome of a run of the program.
struct Outcome {
    int exitCode = -1;
    std::string standardOutput;
    std::string standardError;
    std::vector<std::string> log; ///< lines of the log file without their time stamps, "TRACE: message"

    /// Whether the log has exactly this line, including the level.
    bool Logged(const std::string& line) const;

    /// Whether the log has this line with one of these codes at its end.
    bool Logged(const std::string& line, const Codes& codes) const;
};

/// A folder for one test's files, emptied at the start of the test.
std::filesystem::path ScratchFolder();

/// The lines of a file; none if it does not exist.
std::vector<std::string> ReadLines(const std::filesystem::path& path);

/// A file of the Windows build tree whose program is tested, which the environment names (VANTOR_WINDOWS_TREE).
std::string WindowsTree(const std::string& file);

/// The folder of the Wine prefix of this half of the tests, which the environment names (VANTOR_E2E_PREFIX).
std::filesystem::path WinePrefix();

/// A path as the program sees it.
std::string WindowsPath(const std::filesystem::path& path);

/// The path with doubled backslashes, as registry files need it.
std::string Escaped(const std::string& path);

/// Runs the program with these arguments and a log file of its own, in the Wine prefix of these tests, with these
/// "NAME=VALUE" settings in its environment.
Outcome RunProgram(std::vector<std::string> arguments, std::vector<std::string> settings = {});

/// The same for another copy of the program, and for a log at logFile; no /logfile is added.
Outcome RunProgram(const std::filesystem::path& program, std::vector<std::string> arguments,
                   const std::filesystem::path& logFile, std::vector<std::string> settings = {});

/// Resets what the program reads from the registry to a machine without the product, with the test hook that sends
/// reports to this machine, and adds these lines of a registry file.
void SetRegistry(const std::string& lines = {});

/// The values of a key of the prefix's registry as "reg query" shows them, each under its name.
std::map<std::string, std::string> RegistryValues(const std::string& key);

/// The text with placeholders for the program's version: "<version>" as in the payload, "<version fields>" as in the log
/// of a record, "<version bytes>" as in a record in Base64, where the throttle mode, 0, follows the version.
std::string WithoutVersion(std::string text);

/// Expects the log, with "~" for what varies from run to run and placeholders for the version, to be this file of this
/// folder, line by line. The test's scratch folder gets the actual one, to be taken over when a change is meant.
void ExpectLog(const Outcome& outcome, const std::string& file);

/// The command that runs a Windows program in the prefix of these tests, with these "NAME=VALUE" settings.
std::vector<std::string> UnderWine(std::vector<std::string> command, std::vector<std::string> settings = {});

/// A native program that runs until the object is destroyed. It must end on SIGTERM.
class Background {
public:
    /// Its output goes to NAME.txt in the test's folder. The constructor returns once that contains `ready`.
    Background(std::vector<std::string> command, const std::string& name, const std::string& ready);
    ~Background();
    Background(const Background&) = delete;
    Background& operator=(const Background&) = delete;

    std::string Output() const;

private:
    std::filesystem::path m_output;
    int m_process;
};

/// A program that runs in the prefix under this name and holds this much memory until the object is destroyed.
class StandIn : public Background {
public:
    explicit StandIn(const std::string& name, int mebibytes = 0);
};

} // namespace vantor::e2e
