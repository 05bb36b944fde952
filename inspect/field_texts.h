// Explains the fields and bits of a health record in words.
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

/// Whether the engine's version could not be read, which sets all its parts to their maximum.
bool IsEngineUnknown(const HealthRecord& record);

/// The meaning of a field and, if the number does not say it all, of its value in this record.
std::string FieldText(const HealthRecordField& field, const HealthRecord& record);

/// What it means if the bit is set.
std::string_view BitText(ResultBit bit);

/// A word of bits as "0x" and 16 hexadecimal digits.
std::string WordText(std::uint64_t word);

} // namespace vantor::inspect
