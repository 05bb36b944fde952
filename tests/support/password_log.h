// What the program logs of a password.
#pragma once

#include "run/log/log_line.h"
#include "run/log/log_texts.h"
#include "run/options/options.h"
#include "run/task/task_schedule.h"
#include "support/command_line.h"
#include "support/recording_logger.h"

#include <string>

namespace vantor {

/// The lines about options of a run with this command line, and of the run that its task starts. The options must be
/// valid ones.
inline std::string LogOfOptions(std::string commandLine)
{
    std::string log;
    const auto write = [&log](LogLevel level, const std::string& message) { log += FormatLogLine({}, level, message); };
    for (int run = 0; run < 2; ++run) {
        RunConfig config;
        RecordingLogger options;
        write(LogLevel::trace, texts::kEntering + std::string(texts::kGetConfig));
        ParseArguments(SplitCommandLine(commandLine), config, options);
        for (const std::string& text : options.lines) {
            write(text[0] == 'T' ? LogLevel::trace : LogLevel::warning, text.substr(2));
        }
        write(LogLevel::trace, std::string("ProxyConfig.") + texts::kPasswordField + " = " + config.password);
        write(LogLevel::trace, "CHTTPProxyManager::InitConfig:  username: u" + std::string(texts::kPassword) +
                                   config.password + texts::kAuthenticationSchemes + "3 user handle: 0");
        write(LogLevel::trace, "HttpImplementation::SetCredentials: pwszUserName=u, " +
                                   std::string(texts::kPasswordArgument) + "=" + config.password);
        commandLine = TaskArguments(config, 1);
        write(LogLevel::warning, "Cannot put action arguments: 0x80004005 arg: " + commandLine);
    }
    return log;
}

} // namespace vantor
