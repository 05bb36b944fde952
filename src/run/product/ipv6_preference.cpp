#include "run/product/ipv6_preference.h"

#include "platform/registry.h"

namespace vantor {

bool PrefersIpv6()
{
    const auto key = RegistryKey::OpenForReading(L"SOFTWARE\\Vexora\\AVSolution\\VXSHIELDGLOBAL\\GLOBAL");
    return key && key->QueryDword(L"vriuseipv6").value_or(0) != 0;
}

} // namespace vantor
