#include "inspect/fleet/host_values.h"

#include "health/record/content_version.h"
#include "inspect/field_texts.h"
#include "platform/text/formatting.h"

#include <algorithm>

namespace vantor::fleet {
namespace {

constexpr std::uint64_t kUnknownEngine = ~std::uint64_t{0};

/// Parts of a version, 16 bits each, in one number.
std::uint64_t Packed(std::uint16_t first, std::uint16_t second, std::uint16_t third, std::uint16_t fourth)
{
    return std::uint64_t{first} << 48 | std::uint64_t{second} << 32 | std::uint64_t{third} << 16 | fourth;
}

/// The last `parts` of them, with dots.
std::string Dotted(std::uint64_t number, int parts)
{
    std::string text;
    for (int part = parts - 1; part >= 0; --part) {
        text += std::to_string(number >> part * 16 & 0xFFFF) + (part == 0 ? "" : ".");
    }
    return text;
}

std::uint64_t Program(const HealthRecord& record)
{
    return Packed(record.vantor_major, record.vantor_minor, record.vantor_patch, record.vantor_build);
}

std::uint64_t Engine(const HealthRecord& record)
{
    return inspect::IsEngineUnknown(record)
               ? kUnknownEngine
               : Packed(record.vxcore_major, record.vxcore_minor, record.vxcore_patch, record.vxcore_build);
}

std::uint64_t Content(const HealthRecord& record)
{
    return ContentVersionOf(record);
}

std::uint64_t Windows(const HealthRecord& record)
{
    return Packed(0, record.os_major, record.os_minor, record.os_build);
}

std::uint64_t Architecture(const HealthRecord& record)
{
    return record.arch;
}

std::string FourParts(std::uint64_t number)
{
    return Dotted(number, 4);
}

std::string ThreeParts(std::uint64_t number)
{
    return Dotted(number, 3);
}

std::string EngineText(std::uint64_t number)
{
    return number == kUnknownEngine ? "unknown" : Dotted(number, 4);
}

std::string ContentText(std::uint64_t number)
{
    return ContentVersionText(static_cast<std::uint32_t>(number));
}

std::string ArchitectureText(std::uint64_t number)
{
    const std::string_view name = inspect::MachineText(number);
    return name.empty() ? "0x" + Hexadecimal(number, 4) : std::string(name);
}

} // namespace

const HostValue kHostValueKinds[kHostValues] = {
    {"program", "VANTor", Program, FourParts},
    {"engine", "Engine", Engine, EngineText},
    {"content", "Content", Content, ContentText},
    {"windows", "Windows", Windows, ThreeParts},
    {"architecture", "Architecture", Architecture, ArchitectureText},
};

std::uint32_t ContentVersionOf(const HealthRecord& record)
{
    const bool isKnown = record.dat_major != ContentVersion::kUnknown && record.dat_minor != ContentVersion::kUnknown;
    return isKnown ? std::uint32_t{record.dat_major} << 16 | record.dat_minor : kUnknownVersion;
}

std::string ContentVersionText(std::uint32_t version)
{
    return version == kUnknownVersion ? "unknown" : Dotted(version, 2);
}

std::uint16_t ValueTable::Count(std::uint64_t number)
{
    auto place = m_places.find(number);
    if (place == m_places.end() && m_entries.size() <= kMaxValues) {
        place = m_places.emplace(number, static_cast<std::uint16_t>(m_entries.size())).first;
        m_entries.push_back({number, 0});
    }
    const std::uint16_t index = place == m_places.end() ? std::uint16_t{0} : place->second;
    ++m_entries[index].pulses;
    return index;
}

} // namespace vantor::fleet
