// vantor-bench: what a periodic pulse costs compared with programs that do less, and how that grows. Started by bench/run,
// in a network and a Wine prefix of its own; prints Markdown.
#include "measured_run.h"
#include "receiver/receiver.h"
#include "statistics.h"

#include <CLI/CLI.hpp>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <stdexcept>

namespace vantor::bench {
namespace {

namespace fs = std::filesystem;

struct Setting {
    fs::path program;
    fs::path baselines;
    fs::path pki;
    fs::path place; ///< for logs and what programs print
    int pairs = 0;
};

std::string WindowsPath(const fs::path& path)
{
    std::string text = "Z:" + fs::absolute(path).string();
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
}

std::vector<std::string> Pulse(const Setting& setting, const std::string& mode, const fs::path& log)
{
    return {setting.program, "/hcmode=" + mode, "/logfile=" + WindowsPath(log)};
}

/// A program of the comparison, and its runs.
struct Contender {
    const char* title;
    std::vector<std::string> command;
    std::vector<Cost> costs;
};

constexpr std::size_t kPulse = 0;
constexpr std::size_t kObligatory = 1;
constexpr std::size_t kBarePost = 2;
using Contenders = std::array<Contender, 3>;

/// A run that must deliver one report.
Cost Deliver(receiver::Receiver& receiver, const std::vector<std::string>& command, const fs::path& output)
{
    receiver.Forget();
    const Cost cost = Measure(command, output);
    if (cost.exitCode != 0 || receiver.Pulses().size() != 1) {
        throw std::runtime_error(command.front() + " ended with " + std::to_string(cost.exitCode) + " and delivered " +
                                 std::to_string(receiver.Pulses().size()) + " reports; its output: " + output.string());
    }
    return cost;
}

/// The pulse's own body, which the baselines post.
fs::path SaveBody(receiver::Receiver& receiver, const Setting& setting)
{
    Deliver(receiver, Pulse(setting, "periodic", setting.place / "first.log"), setting.place / "output.txt");
    fs::path body = setting.place / "body.json";
    std::ofstream(body, std::ios::binary) << receiver.Requests().back().body;
    return body;
}

std::vector<double> Values(const Contender& contender, double Cost::*figure)
{
    std::vector<double> values;
    for (const Cost& cost : contender.costs) {
        values.push_back(cost.*figure);
    }
    return values;
}

void PrintComparison(const Contenders& contenders, const Setting& setting)
{
    const struct {
        const char* title;
        double Cost::*figure;
    } kFigures[] = {{"wall, ms", &Cost::wallMs},
                    {"CPU, ms", &Cost::cpuMs},
                    {"peak memory, MiB", &Cost::peakMib},
                    {"bytes on the wire", &Cost::wireBytes}};

    std::printf("| | pulse | obligatory calls | bare POST | pulse / obligatory calls | pulse / bare POST |\n"
                "|---|---:|---:|---:|---:|---:|\n");
    for (const auto& row : kFigures) {
        std::array<std::vector<double>, 3> values;
        std::transform(contenders.begin(), contenders.end(), values.begin(),
                       [&row](const Contender& contender) { return Values(contender, row.figure); });
        std::printf("| %s | %.1f | %.1f | %.1f | %s | %s |\n", row.title, Quantile(values[kPulse], 0.5),
                    Quantile(values[kObligatory], 0.5), Quantile(values[kBarePost], 0.5),
                    RatioText(values[kPulse], values[kObligatory]).c_str(),
                    RatioText(values[kPulse], values[kBarePost]).c_str());
    }

    std::array<Touched, 3> touched;
    std::array<double, 3> size{};
    for (std::size_t which = 0; which < contenders.size(); ++which) {
        touched[which] = Trace(contenders[which].command, setting.place / "trace.txt");
        size[which] = static_cast<double>(fs::file_size(contenders[which].command.front())) / 1024;
    }
    std::printf("| program, KiB | %.0f | %.0f | %.0f | | |\n", size[0], size[1], size[2]);
    std::printf("| files touched | %zu | %zu | %zu | | |\n", touched[0].files, touched[1].files, touched[2].files);
    std::printf("| registry keys touched | %zu | %zu | %zu | | |\n\n", touched[0].registryKeys, touched[1].registryKeys,
                touched[2].registryKeys);
}

/// Runs the programs in turns, and rotates their order from pair to pair.
void Compare(receiver::Receiver& receiver, const Setting& setting)
{
    const fs::path body = SaveBody(receiver, setting);
    Contenders contenders{{{"pulse", Pulse(setting, "periodic", setting.place / "pulse.log"), {}},
                           {"obligatory calls", {setting.baselines / "obligatory_calls.exe", WindowsPath(body)}, {}},
                           {"bare POST", {setting.baselines / "bare_post.exe", WindowsPath(body)}, {}}}};
    constexpr int kWarmUps = 2;
    for (int pair = -kWarmUps; pair < setting.pairs; ++pair) {
        for (std::size_t turn = 0; turn < contenders.size(); ++turn) {
            Contender& contender = contenders[(turn + static_cast<std::size_t>(pair + kWarmUps)) % contenders.size()];
            const Cost cost = Deliver(receiver, contender.command, setting.place / "output.txt");
            if (pair >= 0) {
                contender.costs.push_back(cost);
            }
        }
    }
    std::printf("%d pairs; medians, and the pairs' ratios with their quartiles:\n\n", setting.pairs);
    PrintComparison(contenders, setting);
}

/// The median wall time of some pulses, in milliseconds.
double PulseTime(receiver::Receiver& receiver, const Setting& setting, const std::string& mode, const fs::path& log)
{
    constexpr int kRuns = 9;

    std::vector<double> times;
    times.reserve(kRuns);
    for (int run = 0; run < kRuns; ++run) {
        times.push_back(Deliver(receiver, Pulse(setting, mode, log), setting.place / "output.txt").wallMs);
    }
    return Quantile(times, 0.5);
}

void PrintGrowth(const char* what, const std::string& size, double time, double first)
{
    std::printf("| %s | %s | %.1f | %.2f |\n", what, size.c_str(), time, time / first);
    std::fflush(stdout);
}

/// Fills the process list while it lives.
class IdleProcesses {
public:
    IdleProcesses(const Setting& setting, int count)
    {
        const std::string command = "wine '" + (setting.baselines / "idle_processes.exe").string() + "' " +
                                    std::to_string(count) + " >'" + (setting.place / "idle.txt").string() + "' 2>&1";
        fs::remove(setting.place / "idle.txt");
        m_process = ::popen(command.c_str(), "we");
        constexpr int kTries = 1200;
        for (int tries = 0; tries < kTries; ++tries) {
            std::string ready;
            int started = 0;
            if (std::ifstream(setting.place / "idle.txt") >> ready >> started) {
                if (started == count) {
                    return;
                }
                break;
            }
            ::usleep(100'000);
        }
        throw std::runtime_error("not every idle process started, or not within two minutes");
    }
    ~IdleProcesses() { ::pclose(m_process); }
    IdleProcesses(const IdleProcesses&) = delete;
    IdleProcesses& operator=(const IdleProcesses&) = delete;

private:
    std::FILE* m_process;
};

void WriteAdapters(const Setting& setting, int count)
{
    const fs::path file = setting.place / "adapters.reg";
    std::ofstream registry(file);
    registry << "REGEDIT4\n";
    for (int adapter = 0; adapter < count; ++adapter) {
        char number[16];
        std::snprintf(number, sizeof(number), "%04d", adapter);
        registry << "\n[HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001\\Control\\Class\\"
                    "{4d36e968-e325-11ce-bfc1-08002be10318}\\"
                 << number << "]\n\"DriverDesc\"=\"Display Adapter " << number << "\"\n";
    }
    registry.close();
    const fs::path output = setting.place / "output.txt";
    if (Measure({"reg", "import", WindowsPath(file)}, output).exitCode != 0) {
        throw std::runtime_error("the display adapters could not be registered: " + output.string());
    }
}

/// A log of this many mebibytes, without holes.
void WriteLog(const fs::path& log, std::size_t mebibytes)
{
    std::string lines;
    while (lines.size() < (1U << 20)) {
        lines += "26/11/21 08:41:36: TRACE: Entering GetConfig\r\n";
    }
    lines.resize(1U << 20);
    std::ofstream file(log, std::ios::binary);
    for (std::size_t written = 0; written < mebibytes; ++written) {
        file << lines;
    }
    file.close();
    if (!file) {
        throw std::runtime_error(log.string() + " could not be written");
    }
}

void Grow(receiver::Receiver& receiver, const Setting& setting)
{
    std::printf("How a pulse's time grows; medians of 9, the first row of each kind is 1:\n\n"
                "| what | how much | wall, ms | ratio |\n|---|---:|---:|---:|\n");
    const fs::path log = setting.place / "grown.log";
    double first = 0;
    for (const int count : {10, 100, 1000}) {
        const IdleProcesses processes(setting, count);
        const double time = PulseTime(receiver, setting, "periodic", log);
        first = count == 10 ? time : first;
        PrintGrowth("processes", std::to_string(count), time, first);
    }
    for (const int count : {1, 8, 64}) {
        WriteAdapters(setting, count);
        const double time = PulseTime(receiver, setting, "predatupdate", log);
        first = count == 1 ? time : first;
        PrintGrowth("display adapters", std::to_string(count), time, first);
    }
    for (const std::size_t mebibytes : {0U, 1024U}) {
        WriteLog(log, mebibytes);
        const double time = PulseTime(receiver, setting, "periodic", log);
        first = mebibytes == 0 ? time : first;
        PrintGrowth("log file", std::to_string(mebibytes) + " MiB", time, first);
    }
    fs::remove(log);
}

int Measure(const Setting& setting)
{
    fs::create_directories(setting.place);
    CheckMeasure(setting.place / "output.txt");
    receiver::Receiver receiver({setting.pki / "server-a.pem", setting.pki / "server-a.key", 8000});
    receiver.Start();
    Compare(receiver, setting);
    Grow(receiver, setting);
    return 0;
}

int Run(int argc, char** argv)
{
    Setting setting;
    CLI::App app("What a periodic pulse costs beside programs that do less, as Markdown. Started by bench/run.");
    app.add_option("PROGRAM", setting.program, "vantor.exe")->required();
    app.add_option("BASELINES", setting.baselines, "the folder of the programs that do less")->required();
    app.add_option("PKI", setting.pki, "the folder of the receiver's certificates")->required();
    app.add_option("PLACE", setting.place, "the folder for logs and what programs print")->required();
    app.add_option("PAIRS", setting.pairs, "how many runs of each")->required()->check(CLI::Range(1, 9999));
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    return Measure(setting);
}

} // namespace
} // namespace vantor::bench

int main(int argc, char** argv)
{
    try {
        return vantor::bench::Run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vantor-bench: %s\n", error.what());
        return 1;
    }
}
