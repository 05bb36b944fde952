#include "inspect/fleet/line_source.h"

#include "inspect/fleet/pulse_line.h"

#include <algorithm>
#include <cstring>

namespace vantor::fleet {
namespace {

constexpr std::size_t kFirstBufferBytes = 64U << 10;

} // namespace

LineSource::LineSource(std::istream& stream) : m_stream(stream), m_buffer(kFirstBufferBytes) {}

bool LineSource::Next(Line& line)
{
    std::size_t searched = 0;
    for (;;) {
        const char* const begin = m_buffer.data() + m_begin;
        const std::size_t size = m_end - m_begin;
        if (const void* const end = std::memchr(begin + searched, '\n', size - searched)) {
            return Take(static_cast<std::size_t>(static_cast<const char*>(end) - begin), 1, line);
        }
        if (size > kMaxLineBytes) {
            return PassOverRest(line);
        }
        searched = size;
        if (!Fill()) {
            return size != 0 && Take(size, 0, line);
        }
    }
}

/// Takes the first `size` bytes as a line and passes over `skipped` more.
bool LineSource::Take(std::size_t size, std::size_t skipped, Line& line)
{
    line = {{m_buffer.data() + m_begin, size}, ++m_number, size > kMaxLineBytes};
    if (line.text.ends_with('\r')) {
        line.text.remove_suffix(1);
    }
    m_begin += size + skipped;
    return true;
}

/// Reads the rest of a line away that is too long to keep.
bool LineSource::PassOverRest(Line& line)
{
    line = {{}, ++m_number, true};
    for (m_begin = m_end; Fill(); m_begin = m_end) {
        const char* const begin = m_buffer.data() + m_begin;
        if (const void* const end = std::memchr(begin, '\n', m_end - m_begin)) {
            m_begin += static_cast<std::size_t>(static_cast<const char*>(end) - begin) + 1;
            break;
        }
    }
    return true;
}

/// Reads more behind what is there. False when there is no more.
bool LineSource::Fill()
{
    std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
    m_end -= m_begin;
    m_begin = 0;
    if (m_buffer.size() - kLinePadding <= m_end) {
        m_buffer.resize(m_buffer.size() * 2);
    }
    const auto room = static_cast<std::streamsize>(m_buffer.size() - kLinePadding - m_end);
    if (!m_stream.good()) {
        return false;
    }
    m_stream.read(m_buffer.data() + m_end, room);
    const auto read = static_cast<std::size_t>(m_stream.gcount());
    m_end += read;
    return read != 0;
}

} // namespace vantor::fleet
