// Whether the product reaches the reputation service over IPv6.
#pragma once

namespace vantor {

/// True when the DWORD vriuseipv6 under HKLM\SOFTWARE\Vexora\AVSolution\VXSHIELDGLOBAL\GLOBAL is not 0; false when it
/// cannot be read. Both the report's "ipv6" bit and the choice of the service's host use this.
bool PrefersIpv6();

} // namespace vantor
