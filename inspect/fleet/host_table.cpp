#include "inspect/fleet/host_table.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace vantor::fleet {
namespace {

constexpr std::size_t kFirstPlaces = 1024;

std::uint64_t RandomSeed()
{
    std::random_device device;
    return std::uint64_t{device()} << 32 | device();
}

/// Mixes a word so that each of its bits has a say in each of the result's.
std::uint64_t Mixed(std::uint64_t word)
{
    word = (word ^ word >> 32) * 0xD6E8FEB86659FD93U;
    word = (word ^ word >> 32) * 0xD6E8FEB86659FD93U;
    return word ^ word >> 32;
}

} // namespace

bool Host::HasSent(std::int64_t requestId) const
{
    const auto count = static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(pulses, kRequestIds));
    return std::find(requestIds.begin(), requestIds.begin() + count, requestId) != requestIds.begin() + count;
}

HostTable::HostTable(std::size_t limit) : m_limit(limit), m_seed(RandomSeed()), m_places(kFirstPlaces, kNoRoom) {}

std::uint32_t HostTable::Find(std::string_view id)
{
    const std::uint64_t hash = HashOf(id);
    std::size_t place = hash & (m_places.size() - 1);
    for (; m_places[place] != kNoRoom; place = (place + 1) & (m_places.size() - 1)) {
        const Host& host = m_hosts[m_places[place]];
        if (host.hash == hash && host.id == id) {
            return m_places[place];
        }
    }
    if (m_hosts.size() >= m_limit) {
        return kNoRoom;
    }
    char* const kept = static_cast<char*>(m_ids.allocate(id.size(), 1));
    std::ranges::copy(id, kept);
    Host& host = m_hosts.emplace_back();
    host.id = {kept, id.size()};
    host.hash = hash;
    m_places[place] = static_cast<std::uint32_t>(m_hosts.size() - 1);
    if (m_hosts.size() * 2 > m_places.size()) {
        Grow();
    }
    return static_cast<std::uint32_t>(m_hosts.size() - 1);
}

std::uint64_t HostTable::HashOf(std::string_view id) const
{
    std::uint64_t hash = m_seed ^ id.size();
    while (!id.empty()) {
        std::uint64_t word = 0;
        const std::size_t size = std::min(sizeof word, id.size());
        std::memcpy(&word, id.data(), size);
        id.remove_prefix(size);
        hash = Mixed(hash ^ word) + m_seed;
    }
    return Mixed(hash);
}

void HostTable::Grow()
{
    std::vector<std::uint32_t> places(m_places.size() * 2, kNoRoom);
    for (std::uint32_t index = 0; index < m_hosts.size(); ++index) {
        std::size_t place = m_hosts[index].hash & (places.size() - 1);
        while (places[place] != kNoRoom) {
            place = (place + 1) & (places.size() - 1);
        }
        places[place] = index;
    }
    m_places = std::move(places);
}

} // namespace vantor::fleet
