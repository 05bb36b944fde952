#include "run/config/run_config.h"

namespace vantor {

bool IsPreUpdate(const RunConfig& config)
{
    return config.hcmode == kPreUpdateMode;
}

bool IsPostUpdate(const RunConfig& config)
{
    return config.hcmode == kPostUpdateMode;
}

bool IsPeriodic(const RunConfig& config)
{
    return config.hcmode == kPeriodicMode;
}

bool IsHealthCheck(const RunConfig& config)
{
    return IsPreUpdate(config) || IsPostUpdate(config) || IsPeriodic(config);
}

} // namespace vantor
