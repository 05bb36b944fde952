// Which of the two products is installed.
#pragma once

namespace vantor {

/// Whether the consumer product is installed: MarketReleaseName or MarketReleaseVer under HKLM\Software\Vexora\VSC can
/// be read into 62 bytes or, if that key does not open, VersionInfo under HKLM\Software\VxeAV can be.
bool IsConsumerProductInstalled();

} // namespace vantor
