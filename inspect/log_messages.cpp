#include "inspect/log_messages.h"

#include "inspect/utc_time.h"
#include "platform/lower_case.h"
#include "run/log/log_line.h"

#include <algorithm>

namespace vantor::inspect {
namespace {

struct Start {
    std::optional<std::chrono::sys_seconds> time;
    LogLevel level;
    std::size_t size; ///< of stamp and level
};

std::optional<Start> FindStart(std::string_view line)
{
    constexpr std::string_view kBetween = ": ";
    const auto time = ParseUtc(line.substr(0, kLogTime.size()), kLogTime);
    const bool isStamped = time && line.substr(kLogTime.size()).starts_with(kBetween);
    const std::size_t stampSize = isStamped ? kLogTime.size() + kBetween.size() : 0;
    for (const LogLevel level : {LogLevel::trace, LogLevel::warning, LogLevel::error}) {
        if (line.substr(stampSize).starts_with(LevelPrefix(level))) {
            return Start{isStamped ? time : std::nullopt, level, stampSize + LevelPrefix(level).size()};
        }
    }
    return std::nullopt;
}

/// Where a password stands in a message: behind one text, before the last occurrence of another or up to the end.
struct Secret {
    std::string_view before;
    std::string_view behind;
};

constexpr Secret kSecrets[] = {
    {"/password=", {}},
    {"m_password = ", {}},
    {"pwszpassword=", {}},
    {" password: ", " authentication schemes: "},
};

} // namespace

std::vector<LogMessage> ReadLogMessages(std::string_view log)
{
    std::vector<LogMessage> messages;
    for (std::size_t number = 1; !log.empty(); ++number) {
        std::string_view line = log.substr(0, log.find('\n'));
        log.remove_prefix(std::min(line.size() + 1, log.size()));
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        const auto start = FindStart(line);
        if (start && (messages.empty() || start->time || !messages.front().time)) {
            messages.push_back({number, start->time, start->level, std::string(line.substr(start->size))});
        } else if (!messages.empty()) {
            messages.back().text.append("\n").append(line);
        }
    }
    return messages;
}

std::string WithoutPasswords(std::string_view text)
{
    std::string result(text);
    for (const auto& [before, behind] : kSecrets) {
        const std::size_t found = LowerCase(result).find(before);
        if (found == std::string::npos) {
            continue;
        }
        const std::size_t begin = found + before.size();
        const std::size_t end = behind.empty() ? std::string::npos : result.rfind(behind);
        if (begin < result.size() && end != begin) {
            result.replace(begin, end == std::string::npos || end < begin ? std::string::npos : end - begin, "***");
        }
    }
    return result;
}

} // namespace vantor::inspect
