// Runs the built program under Wine and reads what it left behind.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vantor::e2e {

/// What a run of the program came to.
struct Outcome {
    int exitCode = -1;
    std::string standardOutput;
    std::string standardError;
    std::vector<std::string> log; ///< lines of the log file without their time stamps, "TRACE: message"

    /// Whether the log holds a line of this text, level included.
    bool Logged(const std::string& line) const;
};

/// A folder for one test's files, emptied at the start of the test.
std::filesystem::path ScratchFolder();

/// The lines of a file; none when it is not there.
std::vector<std::string> ReadLines(const std::filesystem::path& path);

/// A file of the Windows build tree whose program is tested, which the environment names (VANTOR_WINDOWS_TREE).
std::string WindowsTree(const std::string& file);

/// A path as the program sees it.
std::string WindowsPath(const std::filesystem::path& path);

/// The same as a registry file wants it, with doubled backslashes.
std::string Escaped(const std::string& path);

/// Runs the program with these arguments and a log file of its own, in the Wine prefix of these tests, with these
/// "NAME=VALUE" settings in its environment.
Outcome RunProgram(std::vector<std::string> arguments, std::vector<std::string> settings = {});

/// The same for another copy of the program, and with the log wherever logFile says; no /logfile is added.
Outcome RunProgram(const std::filesystem::path& program, std::vector<std::string> arguments,
                   const std::filesystem::path& logFile, std::vector<std::string> settings = {});

/// Puts what the program reads of the registry into the state of these lines of a registry file, on a machine without
/// the product otherwise, and under the test hook that sends reports to this machine.
void SetRegistry(const std::string& lines = {});

/// A value of the prefix's registry as "reg query" shows it; empty when there is none.
std::string RegistryValue(const std::string& key, const std::string& value);

/// The text with placeholders for the program's version: "<version>" as in the payload, "<version fields>" as in the log
/// of a record, "<version bytes>" as in a record in Base64, where the throttle mode, 0, follows the version.
std::string WithoutVersion(std::string text);

/// Expects the log, with "~" for what varies from run to run and placeholders for the version, to be this file of this
/// folder, line by line. The test's scratch folder gets the actual one, to be taken over when a change is meant.
void ExpectLog(const Outcome& outcome, const std::string& file);

/// The command that runs a Windows program in the prefix of these tests, with these "NAME=VALUE" settings.
std::vector<std::string> UnderWine(std::vector<std::string> command, std::vector<std::string> settings = {});

/// A program of this machine that runs until the object ends. It must be one that ends when it is asked to.
class Background {
public:
    /// Its output goes to NAME.txt in the test's folder. Returns when that holds the text that says it is ready.
    Background(std::vector<std::string> command, const std::string& name, const std::string& ready);
    ~Background();
    Background(const Background&) = delete;
    Background& operator=(const Background&) = delete;

    std::string Output() const;

private:
    std::filesystem::path m_output;
    int m_process;
};

/// A program that runs in the prefix under this name and holds that much memory, until the object ends.
class StandIn : public Background {
public:
    explicit StandIn(const std::string& name, int mebibytes = 0);
};

} // namespace vantor::e2e
