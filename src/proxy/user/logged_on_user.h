// Finding the logged-on user.
#pragma once

#include "platform/owner.h"
#include "proxy/calls/token_calls.h"
#include "run/log/logger.h"

#include <memory>

namespace vantor {

/// A token of the logged-on user, taken from the user's shell; where nobody is logged on, this account's own without
/// its privileges. Empty when neither can be had; the last error says why.
KernelHandle DiscoverUserToImpersonate(ITokenCalls& tokens, const std::shared_ptr<ILogger>& logger);

} // namespace vantor
