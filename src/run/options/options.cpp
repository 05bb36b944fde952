#include "run/options/options.h"

#include "platform/lower_case.h"
#include "run/log/log_texts.h"
#include "run/options/numbers.h"

#include <limits>
#include <type_traits>

namespace vantor {
namespace {

enum class Value { none, required, mayBeEmpty };

struct Option {
    std::string_view name;
    Value value;
    void (*apply)(RunConfig& config, const std::string& value);
};

/// Sets a number option whose field holds any number up to its type's maximum.
template <auto Field>
void SetUnsigned(RunConfig& config, const std::string& value)
{
    auto& field = config.*Field;
    using Number = std::remove_reference_t<decltype(field)>;
    field = static_cast<Number>(ConvertToUnsigned(value, std::numeric_limits<Number>::max()));
}

template <auto Field>
void SetText(RunConfig& config, const std::string& value)
{
    config.*Field = value;
}

template <auto Field>
void SetFlag(RunConfig& config, const std::string&)
{
    config.*Field = true;
}

void SetUpdateStatus(RunConfig& config, const std::string& value)
{
    config.datUpdateStatus = static_cast<std::int8_t>(ConvertToSigned(value, -128, 127));
    config.datUpdateStatusSet = true;
}

constexpr Option kOptions[] = {
    {"/uninstall", Value::none, SetFlag<&RunConfig::uninstall>},
    {"/periodicruncount", Value::required, SetUnsigned<&RunConfig::periodicRunCount>},
    {"/test", Value::none, SetFlag<&RunConfig::test>},
    {"/resttest", Value::none, SetFlag<&RunConfig::restTest>},
    {"/cleanstate", Value::none, SetFlag<&RunConfig::cleanState>},
    {"/continue", Value::none, SetFlag<&RunConfig::continueRun>},
    {texts::kHcmodeOption, Value::required, SetText<&RunConfig::hcmode>},
    {"/datver", Value::required, SetText<&RunConfig::datver>},
    {"/datupdatestatus", Value::required, SetUpdateStatus},
    {"/delaypostdat", Value::required, SetUnsigned<&RunConfig::delayPostDat>},
    {"/logfile", Value::required, SetText<&RunConfig::logFile>},
    {"/verbose", Value::none, SetFlag<&RunConfig::verbose>},
    {"/server", Value::required, SetText<&RunConfig::server>},
    {"/port", Value::required, SetUnsigned<&RunConfig::port>},
    {"/username", Value::mayBeEmpty, SetText<&RunConfig::username>},
    {texts::kPasswordOption, Value::mayBeEmpty, SetText<&RunConfig::password>},
    {"/domain", Value::required, SetText<&RunConfig::domain>},
    {"/principal", Value::required, SetText<&RunConfig::principal>},
    {"/target", Value::required, SetText<&RunConfig::target>},
};

const Option* FindOption(std::string_view lowerCased)
{
    for (const Option& option : kOptions) {
        if (lowerCased.starts_with(option.name)) {
            const std::string_view rest = lowerCased.substr(option.name.size());
            if (rest.empty() || rest.front() == '=') {
                return &option;
            }
        }
    }
    return nullptr;
}

std::string TakeValue(const Option& option, const std::string& argument)
{
    const std::size_t equals = argument.find('=');
    const bool isEmpty = equals == argument.size() - 1;
    if (equals == std::string::npos || (isEmpty && option.value != Value::mayBeEmpty)) {
        throw OptionError("Malformed command line argument: '" + argument + "' Expected /key=value");
    }
    return argument.substr(equals + 1);
}

/// The options that may accompany every command: where and how the log is written.
void ResetLogOptions(RunConfig& config)
{
    config.verbose = false;
    config.logFile.clear();
}

} // namespace

bool IsOption(std::string_view argument)
{
    return FindOption(LowerCase(std::string(argument))) != nullptr;
}

void ParseArguments(std::span<const std::string> arguments, RunConfig& config, ILogger& log)
{
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const std::string& argument = arguments[index];
        log.Log(LogLevel::trace, texts::kHandlingArgument + argument);

        const std::string lowerCased = LowerCase(argument);
        if (const Option* const option = FindOption(lowerCased)) {
            option->apply(config, option->value == Value::none ? std::string() : TakeValue(*option, argument));
            continue;
        }
        const bool isProgramPath = index == 0 && lowerCased.find("vantor") != std::string::npos;
        if (!isProgramPath) {
            log.Log(LogLevel::warning, texts::kUnexpectedArgument + argument);
        }
    }
}

void Validate(const RunConfig& config)
{
    const RunConfig defaults;

    if (config.uninstall) {
        RunConfig rest = config;
        rest.uninstall = false;
        ResetLogOptions(rest);
        if (rest != defaults) {
            throw OptionError("/uninstall must be the only option set.");
        }
    }
    if (config.cleanState) {
        RunConfig rest = config;
        rest.cleanState = false;
        ResetLogOptions(rest);
        if (rest != defaults) {
            throw OptionError("/cleanstate must be the only option set.");
        }
    }
    if (config.periodicRunCount < RunConfig::kNoRunCount) {
        RunConfig rest = config;
        rest.periodicRunCount = RunConfig::kNoRunCount;
        rest.test = false;
        ResetLogOptions(rest);
        rest.port = 0;
        for (auto field : {&RunConfig::hcmode, &RunConfig::server, &RunConfig::username, &RunConfig::password,
                           &RunConfig::domain, &RunConfig::principal, &RunConfig::target}) {
            (rest.*field).clear();
        }
        if (rest != defaults) {
            throw OptionError("/periodicruncount can only have proxy/hcmode settings.");
        }
    }
    if (!config.hcmode.empty() && !IsHealthCheck(config)) {
        throw OptionError("/hcmode must be {predatupdate|postdatupdate|periodic}: " + config.hcmode);
    }
    if (IsPostUpdate(config) && !config.datUpdateStatusSet) {
        throw OptionError("/datupdatestatus=<number> is mandatory if /hcmode=postdatupdate ");
    }
    if (config.delayPostDat != 0 && !IsPostUpdate(config)) {
        throw OptionError("/delaypostdat=<number> can only be used with /hcmode=postdatupdate ");
    }
    if (config.server.empty() != (config.port == 0)) {
        throw OptionError("/server and /port must be specified together");
    }
}

} // namespace vantor
