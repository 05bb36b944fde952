// Finding the logged-on user.
#pragma once

#include "platform/owner.h"
#include "proxy/calls/token_calls.h"
#include "run/log/logger.h"

#include <memory>

namespace vantor {

/// The logged-on user's token, taken from the user's shell; if nobody is logged on, this account's own token without
/// its privileges. Empty if both fail; the last error says why.
KernelHandle DiscoverUserToImpersonate(ITokenCalls& tokens, const std::shared_ptr<ILogger>& logger);

} // namespace vantor
