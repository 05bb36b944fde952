#include "run/product/ipv6_preference.h"

#include "run/product/registry_values.h"

namespace vantor {

bool PrefersIpv6()
{
    return ReadDword(registry::kPrefersIpv6).value_or(0) != 0;
}

} // namespace vantor
