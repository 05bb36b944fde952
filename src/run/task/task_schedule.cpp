#include "run/task/task_schedule.h"

#include "run/options/option_error.h"

#include <span>

namespace vantor {
namespace {

using std::chrono::seconds;

constexpr seconds kDelays[] = {seconds(600),   seconds(1800),  seconds(3600),  seconds(7200),
                               seconds(14400), seconds(28800), seconds(57600), seconds(115200)};
constexpr seconds kTestDelays[] = {seconds(20), seconds(30), seconds(40)};
constexpr seconds kDelayOfContinuedRuns{86400};
constexpr seconds kWindow{259200};

/// The delay after each run of the series.
std::span<const seconds> Series(const RunConfig& config)
{
    return config.test ? std::span<const seconds>(kTestDelays) : std::span<const seconds>(kDelays);
}

/// The text as a quoted argument. Trailing backslashes are doubled, because they would escape the closing quote.
std::string Quoted(const std::string& text)
{
    const std::size_t backslashes = text.size() - (text.find_last_not_of('\\') + 1); // npos + 1: all of them
    return '"' + text + std::string(backslashes, '\\') + '"';
}

} // namespace

bool RegistersNextRun(const RunConfig& config)
{
    if (config.periodicRunCount == RunConfig::kNoRunCount) {
        return config.continueRun;
    }
    if (config.periodicRunCount >= Series(config).size()) {
        throw OptionError("/periodicruncount should have a valid number.");
    }
    return true;
}

NextRun NextRunAfter(const RunConfig& config)
{
    if (config.continueRun) {
        return {kDelayOfContinuedRuns, std::nullopt};
    }
    const auto series = Series(config);
    NextRun next{series[config.periodicRunCount], std::nullopt};
    if (config.periodicRunCount + 1u < series.size()) {
        next.count = static_cast<std::uint8_t>(config.periodicRunCount + 1);
    }
    return next;
}

std::string TaskArguments(const RunConfig& config, std::optional<std::uint8_t> nextCount)
{
    std::string text = " /hcmode=";
    text += ModeName(Mode::periodic);
    if (!config.logFile.empty()) {
        text += " /logfile=" + Quoted(config.logFile);
    }
    if (config.restTest) {
        text += " /resttest";
    }
    if (nextCount) {
        text += " /periodicruncount=" + std::to_string(*nextCount);
        text += config.test ? " /test" : "";
    } else {
        text += " /continue";
    }
    if (config.port != 0) {
        text += " /server=" + config.server + " /port=" + std::to_string(config.port);
        text += " /username=" + config.username + " /password=" + config.password;
    }
    return text;
}

TaskWindow WindowAfter(std::chrono::sys_seconds now, std::chrono::seconds delay, LocalTime localTime)
{
    constexpr std::string_view kLayout = "YYYY-MM-DDThh:mm:ss";

    return {FormatTime(localTime(now + delay), kLayout), FormatTime(localTime(now + delay + kWindow), kLayout)};
}

} // namespace vantor
