#include "run/product/brand.h"

#include "run/product/registry_values.h"

namespace vantor {

bool IsConsumerProductInstalled()
{
    constexpr std::size_t kBufferBytes = 62;

    if (RegistryKey::OpenForReading(registry::kConsumerKey)) {
        return ReadText(registry::kConsumerName, kBufferBytes) || ReadText(registry::kConsumerVersion, kBufferBytes);
    }
    return ReadText(registry::kAntiVirusVersion, kBufferBytes).has_value();
}

} // namespace vantor
