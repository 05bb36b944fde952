// What can get worse on a host from before a content update to after it.
#pragma once

#include "health/record/health_record.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vantor::fleet {

/// How a kind of harm shows.
enum class Sign {
    bitIsClear,    ///< the bit is clear after the update
    bitWasCleared, ///< it was set before and is clear after
    bitWasSet,     ///< it was clear before and is set after
    shieldMemory,  ///< working set of vxshield.exe up by 100 MiB and by half
    eatpMemory,    ///< the same of vxeatp.exe
    silence,       ///< a pre-update pulse and then nothing for a day
};

struct Harm {
    const char* key;  ///< in JSON and in the database
    const char* text; ///< for people: "... after 3 of 1,000 updates"
    Sign sign;
    ResultBit bit = {}; ///< where the sign is a bit's
};

inline constexpr std::array kHarms{
    Harm{"update_failed", "the update failed", Sign::bitIsClear, ResultBit::dat_update_ok},
    Harm{"vxshield_gone", "vxshield.exe was gone", Sign::bitWasCleared, ResultBit::vxshield},
    Harm{"vxemms_gone", "vxemms.exe was gone", Sign::bitWasCleared, ResultBit::vxemms},
    Harm{"vxtray_gone", "vxtray.exe was gone", Sign::bitWasCleared, ResultBit::vxtray},
    Harm{"vxevtps_gone", "vxevtps.exe was gone", Sign::bitWasCleared, ResultBit::vxevtps},
    Harm{"atp_off", "ATP was switched off", Sign::bitWasCleared, ResultBit::atp_enabled},
    Harm{"delete_flag", "the filter driver was newly marked for deletion", Sign::bitWasSet,
         ResultBit::vxedisk_deleteFlag},
    Harm{"delete_flag_error", "that mark newly could not be removed", Sign::bitWasSet,
         ResultBit::vxedisk_deleteFlagError},
    Harm{"start_value", "the filter driver's start value was newly wrong", Sign::bitWasSet,
         ResultBit::vxedisk_startValue},
    Harm{"start_value_error", "that start value newly could not be corrected", Sign::bitWasSet,
         ResultBit::vxedisk_startValueError},
    Harm{"vxshield_memory", "vxshield.exe took much more memory", Sign::shieldMemory},
    Harm{"vxeatp_memory", "vxeatp.exe took much more memory", Sign::eatpMemory},
    Harm{"silent", "the host sent nothing for a day", Sign::silence},
};

/// Kinds of harm, by their place in kHarms.
using HarmSet = std::uint32_t;
inline constexpr HarmSet kSilent = HarmSet{1} << (kHarms.size() - 1);
static_assert(kHarms.back().sign == Sign::silence);

/// What a pulse tells of its host that a later pulse is compared with.
struct HostHealth {
    TestResultBits bits;
    std::uint8_t shieldMemory = 0; ///< working set of vxshield.exe in units of 10 MiB, 0: not known
    std::uint8_t eatpMemory = 0;   ///< the same of vxeatp.exe

    static HostHealth Of(const HealthRecord& record)
    {
        return {record.bitfield_test_results, record.vxshield_mem_10mb, record.vxeatp_mem_10mb};
    }
};

/// What got worse between the two pulses of an update. Silence is not among it.
HarmSet WhatGotWorse(const HostHealth& before, const HostHealth& after);

} // namespace vantor::fleet
