#include "inspect/fleet/pulse_stream.h"

#include "inspect/fleet/pulse_line.h"

#include <utility>

namespace vantor::fleet {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

} // namespace

struct PulseStream::Source {
    Source(std::size_t number_, std::string place_, std::istream& stream)
        : number(number_), place(std::move(place_)), lines(stream)
    {
    }

    const std::size_t number;
    const std::string place;
    LineSource lines;
    PulseLineReader reader;
    FleetPulse pulse;
};

void Skipped::Add(const std::string& example)
{
    if (count++ == 0) {
        first = example;
    }
}

PulseStream::PulseStream() = default;
PulseStream::~PulseStream() = default;

bool PulseStream::IsLater::operator()(const Source* one, const Source* other) const
{
    return std::pair(one->pulse.received, one->number) > std::pair(other->pulse.received, other->number);
}

void PulseStream::Add(std::string place, std::istream& stream)
{
    Source& source = *m_sources.emplace_back(std::make_unique<Source>(m_sources.size(), std::move(place), stream));
    if (Read(source)) {
        m_waiting.push(&source);
    }
}

const FleetPulse* PulseStream::Next()
{
    if (m_current != nullptr && Read(*m_current)) {
        m_waiting.push(m_current);
    }
    m_current = nullptr;
    if (m_waiting.empty()) {
        return nullptr;
    }
    m_current = m_waiting.top();
    m_waiting.pop();
    return &m_current->pulse;
}

/// Reads up to the file's next pulse. False when there is none.
bool PulseStream::Read(Source& source)
{
    Line line;
    while (source.lines.Next(line)) {
        if (line.number == 1 && line.text.starts_with(kUtf8Mark)) {
            line.text.remove_prefix(kUtf8Mark.size());
        }
        if (line.text.empty() && !line.isTooLong) {
            continue;
        }
        try {
            if (line.isTooLong) {
                throw inspect::PulseError("the line is longer than " + std::to_string(kMaxLineBytes) + " bytes");
            }
            source.reader.Read(line.text, source.pulse);
            return true;
        } catch (const inspect::PulseError& error) {
            m_malformed.Add(source.place + ": line " + std::to_string(line.number) + ": " + error.what());
        }
    }
    if (source.lines.HasFailed()) {
        m_failures.push_back(source.place);
    }
    return false;
}

} // namespace vantor::fleet
