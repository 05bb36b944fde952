#include "run/product/brand.h"

#include "platform/registry.h"

namespace vantor {

bool IsConsumerProductInstalled()
{
    constexpr std::size_t kBufferBytes = 62;

    if (const auto consumer = RegistryKey::OpenForReading(L"Software\\Vexora\\VSC")) {
        return consumer->QueryText(L"MarketReleaseName", kBufferBytes) ||
               consumer->QueryText(L"MarketReleaseVer", kBufferBytes);
    }
    const auto engine = RegistryKey::OpenForReading(L"Software\\VxeAV");
    return engine && engine->QueryText(L"VersionInfo", kBufferBytes);
}

} // namespace vantor
