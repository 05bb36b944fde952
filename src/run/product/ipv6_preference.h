// Whether the product uses IPv6 for the reputation service.
#pragma once

namespace vantor {

/// Whether the DWORD vriuseipv6 under HKLM\SOFTWARE\Vexora\AVSolution\VXSHIELDGLOBAL\GLOBAL is not 0; false if it
/// cannot be read. Decides the report's "ipv6" bit and the service's host name.
bool PrefersIpv6();

} // namespace vantor
