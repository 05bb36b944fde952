// The pulses of several files as one stream in order of time.
#pragma once

#include "inspect/fleet/fleet_pulse.h"
#include "inspect/fleet/line_source.h"

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <queue>
#include <string>
#include <vector>

namespace vantor::fleet {

/// What was passed over: how often, and the first case.
struct Skipped {
    std::uint64_t count = 0;
    std::string first; ///< printable

    void Add(const std::string& example);
};

/// Each file is taken for one in order of time, as a receiver writes it, and files may overlap in time. All are open at
/// once, and of each one pulse and its line's buffer are kept.
class PulseStream {
public:
    PulseStream();
    ~PulseStream();
    PulseStream(const PulseStream&) = delete;
    PulseStream& operator=(const PulseStream&) = delete;

    /// Adds a file. `place` names it in what is said of its lines; the stream must live as long as this.
    void Add(std::string place, std::istream& stream);

    /// The next pulse, which is valid until the next call; null at the end.
    const FleetPulse* Next();

    /// The lines that are no pulses.
    const Skipped& Malformed() const { return m_malformed; }

    /// The files that could not be read to their ends.
    const std::vector<std::string>& Failures() const { return m_failures; }

private:
    struct Source;
    struct IsLater {
        bool operator()(const Source* one, const Source* other) const;
    };

    bool Read(Source& source);

    std::vector<std::unique_ptr<Source>> m_sources;
    std::priority_queue<Source*, std::vector<Source*>, IsLater> m_waiting;
    Source* m_current = nullptr; ///< the one whose pulse was given last
    Skipped m_malformed;
    std::vector<std::string> m_failures;
};

} // namespace vantor::fleet
