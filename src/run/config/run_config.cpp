#include "run/config/run_config.h"

namespace vantor {

Mode ModeOf(const RunConfig& config)
{
    for (const auto& [mode, name] : kModeNames) {
        if (config.hcmode == name) {
            return mode;
        }
    }
    return Mode::none;
}

std::string_view ModeName(Mode mode)
{
    for (const auto& [named, name] : kModeNames) {
        if (mode == named) {
            return name;
        }
    }
    return {};
}

} // namespace vantor
