#include "measured_run.h"

#include "platform/text/lower_case.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <stdexcept>

namespace vantor::bench {
namespace {

/// Bytes sent over loopback since this network began: every byte of both directions once.
double LoopbackBytes()
{
    std::ifstream counters("/proc/self/net/dev");
    const std::regex loopback(R"( *lo: *(\d+).*)");
    std::smatch found;
    for (std::string line; std::getline(counters, line);) {
        if (std::regex_match(line, found, loopback)) {
            return std::stod(found[1]);
        }
    }
    return 0;
}

/// Runs the command, prefixed with the words that start it, through the small program that measures it.
Cost Run(const std::vector<std::string>& starter, const std::vector<std::string>& command,
         const std::filesystem::path& output)
{
    const std::string result = output.string() + ".cost";
    std::vector<std::string> words{VANTOR_TIMED_RUN, result, output.string()};
    words.insert(words.end(), starter.begin(), starter.end());
    words.insert(words.end(), command.begin(), command.end());
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    std::filesystem::remove(result);
    const double bytesBefore = LoopbackBytes();
    pid_t child = 0;
    if (::posix_spawn(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) == 0) {
        ::waitpid(child, nullptr, 0);
    }
    Cost cost;
    double peakKib = 0;
    if (!(std::ifstream(result) >> cost.wallMs >> cost.cpuMs >> peakKib >> cost.exitCode)) {
        throw std::runtime_error(words[0] + " measured nothing");
    }
    cost.peakMib = peakKib / 1024;
    cost.wireBytes = LoopbackBytes() - bytesBefore;
    return cost;
}

/// Reads from Wine's record which keys were opened. A key is opened by its name below the key of a handle, so the
/// handles of each process are followed. Records look like this, process and thread before them:
/// "trace:reg:NtOpenKeyEx (0x24,L"Software\\Name",...)", "trace:reg:NtOpenKeyEx <- 0x38".
class KeyRecord {
public:
    void Take(const std::string& line)
    {
        static const std::regex kCall(R"re((\w+):(\w+):trace:reg:Nt(?:OpenKeyEx|CreateKey) \((\S+?),L"(.*?)",.*)re");
        static const std::regex kResult(R"re((\w+):(\w+):trace:reg:Nt(?:OpenKeyEx|CreateKey) <- (0x\w+).*)re");
        std::smatch found;
        if (std::regex_match(line, found, kCall)) {
            const auto below = m_pathByHandle.find({found[1], found[3]});
            std::string path = below == m_pathByHandle.end() ? std::string() : below->second;
            path += (path.empty() || found[4].length() == 0 ? "" : R"(\\)") + LowerCase(found[4].str());
            m_asked[found[2]] = path;
            m_paths.insert(std::move(path));
        } else if (std::regex_match(line, found, kResult)) {
            m_pathByHandle[{found[1], found[3]}] = m_asked[found[2]];
        }
    }
    std::size_t Count() const { return m_paths.size(); }

private:
    std::map<std::string, std::string> m_asked; ///< by thread
    std::map<std::pair<std::string, std::string>, std::string> m_pathByHandle;
    std::set<std::string> m_paths;
};

} // namespace

Cost Measure(const std::vector<std::string>& command, const std::filesystem::path& output)
{
    return Run({"wine"}, command, output);
}

Touched Trace(const std::vector<std::string>& command, const std::filesystem::path& output)
{
    const Cost cost = Run({"env", "WINEDEBUG=-all,+pid,+file,+reg", "wine"}, command, output);
    if (cost.exitCode != 0) {
        throw std::runtime_error("the traced run ended with " + std::to_string(cost.exitCode) + ": " + command.front());
    }
    const std::regex file(R"re(trace:file:NtCreateFile .*name=(L".*?") )re");
    std::set<std::string> files;
    KeyRecord keys;
    std::ifstream record(output);
    std::smatch found;
    for (std::string line; std::getline(record, line);) {
        if (std::regex_search(line, found, file)) {
            files.insert(found[1]);
        } else {
            keys.Take(line);
        }
    }
    return {files.size(), keys.Count()};
}

void CheckMeasure(const std::filesystem::path& output)
{
    constexpr double kMaxMib = 8;
    const Cost cost = Run({}, {"true"}, output);
    if (cost.exitCode != 0 || cost.peakMib > kMaxMib) {
        throw std::runtime_error("a program that does nothing seems to take " + std::to_string(cost.peakMib) +
                                 " MiB: the figures would hold the memory of the measuring program");
    }
}

} // namespace vantor::bench
