#include "run/options/options.h"

#include "platform/text/lower_case.h"
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
    void (*apply)(RunConfig& config, const std::string& value) = nullptr;
    std::string RunConfig::*text = nullptr; ///< instead of apply: set to the unchanged value
};

/// Sets a number option that may have any value of its field's type.
template <auto Field>
void SetUnsigned(RunConfig& config, const std::string& value)
{
    auto& field = config.*Field;
    using Number = std::remove_reference_t<decltype(field)>;
    field = static_cast<Number>(ConvertToUnsigned(value, std::numeric_limits<Number>::max()));
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
    {texts::kHcmodeOption, Value::required, nullptr, &RunConfig::hcmode},
    {"/datver", Value::required, nullptr, &RunConfig::datver},
    {"/datupdatestatus", Value::required, SetUpdateStatus},
    {"/delaypostdat", Value::required, SetUnsigned<&RunConfig::delayPostDat>},
    {"/logfile", Value::required, nullptr, &RunConfig::logFile},
    {"/verbose", Value::none, SetFlag<&RunConfig::verbose>},
    {"/server", Value::required, nullptr, &RunConfig::server},
    {"/port", Value::required, SetUnsigned<&RunConfig::port>},
    {"/username", Value::mayBeEmpty, nullptr, &RunConfig::username},
    {texts::kPasswordOption, Value::mayBeEmpty, nullptr, &RunConfig::password},
    {"/domain", Value::required, nullptr, &RunConfig::domain},
    {"/principal", Value::required, nullptr, &RunConfig::principal},
    {"/target", Value::required, nullptr, &RunConfig::target},
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

void Apply(const Option& option, const std::string& argument, RunConfig& config)
{
    const std::string value = option.value == Value::none ? std::string() : TakeValue(option, argument);
    if (option.text) {
        config.*option.text = value;
    } else {
        option.apply(config, value);
    }
}

template <auto... Fields>
void Reset(RunConfig& config, const RunConfig& defaults)
{
    ((config.*Fields = defaults.*Fields), ...);
}

/// Whether all fields except those that `reset` resets have their default values.
bool HasOnly(RunConfig config, void (*reset)(RunConfig& config, const RunConfig& defaults))
{
    const RunConfig defaults;
    reset(config, defaults);
    return config == defaults;
}

/// A constraint on the combination of options.
struct Rule {
    bool (*applies)(const RunConfig& config);
    bool (*holds)(const RunConfig& config);
    const char* message;                     ///< if it applies and does not hold
    std::string RunConfig::*shown = nullptr; ///< appended to the message
};

constexpr Rule kRules[] = {
    {[](const RunConfig& config) { return config.uninstall; },
     [](const RunConfig& config) {
         return HasOnly(config, Reset<&RunConfig::uninstall, &RunConfig::verbose, &RunConfig::logFile>);
     },
     "/uninstall must be the only option set."},
    {[](const RunConfig& config) { return config.cleanState; },
     [](const RunConfig& config) {
         return HasOnly(config, Reset<&RunConfig::cleanState, &RunConfig::verbose, &RunConfig::logFile>);
     },
     "/cleanstate must be the only option set."},
    {[](const RunConfig& config) { return config.periodicRunCount < RunConfig::kNoRunCount; },
     [](const RunConfig& config) {
         return HasOnly(config,
                        Reset<&RunConfig::periodicRunCount, &RunConfig::test, &RunConfig::verbose, &RunConfig::logFile,
                              &RunConfig::hcmode, &RunConfig::server, &RunConfig::port, &RunConfig::username,
                              &RunConfig::password, &RunConfig::domain, &RunConfig::principal, &RunConfig::target>);
     },
     "/periodicruncount can only have proxy/hcmode settings."},
    {[](const RunConfig& config) { return !config.hcmode.empty(); },
     [](const RunConfig& config) { return ModeOf(config) != Mode::none; },
     "/hcmode must be {predatupdate|postdatupdate|periodic}: ", &RunConfig::hcmode},
    {[](const RunConfig& config) { return ModeOf(config) == Mode::postUpdate; },
     [](const RunConfig& config) { return config.datUpdateStatusSet; },
     "/datupdatestatus=<number> is mandatory if /hcmode=postdatupdate "},
    {[](const RunConfig& config) { return config.delayPostDat != 0; },
     [](const RunConfig& config) { return ModeOf(config) == Mode::postUpdate; },
     "/delaypostdat=<number> can only be used with /hcmode=postdatupdate "},
    {[](const RunConfig& config) { return !config.server.empty() || config.port != 0; },
     [](const RunConfig& config) { return !config.server.empty() && config.port != 0; },
     "/server and /port must be specified together"},
};

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
            Apply(*option, argument, config);
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
    for (const Rule& rule : kRules) {
        if (rule.applies(config) && !rule.holds(config)) {
            throw OptionError(rule.message + (rule.shown ? config.*rule.shown : std::string()));
        }
    }
}

} // namespace vantor
