#include "inspect/fleet/harm.h"

namespace vantor::fleet {
namespace {

/// In units of 10 MiB. Nothing is said of a process whose memory is not known before and after.
bool IsMuchMore(unsigned before, unsigned after)
{
    constexpr unsigned kMinGrowth = 10;
    return before != 0 && after >= before + kMinGrowth && 2 * after >= 3 * before;
}

bool Shows(const Harm& harm, const HostHealth& before, const HostHealth& after)
{
    switch (harm.sign) {
    case Sign::bitIsClear:
        return !after.bits.Test(harm.bit);
    case Sign::bitWasCleared:
        return before.bits.Test(harm.bit) && !after.bits.Test(harm.bit);
    case Sign::bitWasSet:
        return !before.bits.Test(harm.bit) && after.bits.Test(harm.bit);
    case Sign::shieldMemory:
        return IsMuchMore(before.shieldMemory, after.shieldMemory);
    case Sign::eatpMemory:
        return IsMuchMore(before.eatpMemory, after.eatpMemory);
    case Sign::silence:
        break;
    }
    return false;
}

} // namespace

HarmSet WhatGotWorse(const HostHealth& before, const HostHealth& after)
{
    HarmSet worse = 0;
    for (std::size_t index = 0; index < kHarms.size(); ++index) {
        worse |= HarmSet{Shows(kHarms[index], before, after)} << index;
    }
    return worse;
}

} // namespace vantor::fleet
