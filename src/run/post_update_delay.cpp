#include "run/post_update_delay.h"

#include "run/log/log_texts.h"

#include <string>

namespace vantor {

void DelayAfterUpdate(const RunConfig& config, ILogger& log,
                      const std::function<void(std::chrono::milliseconds)>& sleep)
{
    constexpr std::uint16_t kMaxMinutes = 10;

    if (config.delayPostDat == 0) {
        return;
    }
    const std::string value = std::to_string(config.delayPostDat);
    if (config.delayPostDat > kMaxMinutes) {
        log.Log(LogLevel::warning, "/delaypostdat out of range: " + value);
        return;
    }
    log.Log(LogLevel::trace, texts::kDelayWaitingFor + value + " minutes.");
    sleep(std::chrono::minutes(config.delayPostDat));
}

} // namespace vantor
