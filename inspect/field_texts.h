// What the fields and bits of a health record stand for, in words.
#pragma once

#include "health/record/health_record.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace vantor::inspect {

/// The name of a mode byte: "predatupdate", "postdatupdate", "periodic" or "no known mode".
std::string_view ModeText(Mode mode);

/// The name of a native machine type, such as "AMD64"; empty for one without a name.
std::string_view MachineText(std::uint64_t arch);

/// Whether the engine's version could not be read: all its parts are at their highest value then.
bool IsEngineUnknown(const HealthRecord& record);

/// What a field holds, and what its value in this record stands for where the number does not say it all.
std::string FieldText(const HealthRecordField& field, const HealthRecord& record);

/// What it means that a bit is set.
std::string_view BitText(ResultBit bit);

/// A word of bits as 0x and 16 hexadecimal digits.
std::string WordText(std::uint64_t word);

} // namespace vantor::inspect
