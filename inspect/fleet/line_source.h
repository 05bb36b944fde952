// Lines of a stream, of any number, within bounded memory.
#pragma once

#include <cstddef>
#include <istream>
#include <string_view>
#include <vector>

namespace vantor::fleet {

/// The maximum length of a line in bytes. The largest body that the receiver takes gives a line of some 300 KiB.
inline constexpr std::size_t kMaxLineBytes = 512U << 10;

struct Line {
    std::string_view text; ///< without its end; empty when it is too long. Valid until the next line.
    std::size_t number = 0;
    bool isTooLong = false; ///< it has more than kMaxLineBytes
};

class LineSource {
public:
    explicit LineSource(std::istream& stream);

    /// The next line, or false at the end or when reading fails. kLinePadding readable bytes follow the text.
    bool Next(Line& line);

    /// Whether reading failed before the end.
    bool HasFailed() const { return m_stream.bad(); }

private:
    bool Fill();
    bool Take(std::size_t size, std::size_t skipped, Line& line);
    bool PassOverRest(Line& line);

    std::istream& m_stream;
    std::vector<char> m_buffer;
    std::size_t m_begin = 0; ///< of what is read and not taken
    std::size_t m_end = 0;
    std::size_t m_number = 0;
};

} // namespace vantor::fleet
