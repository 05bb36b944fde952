// Which of the two products is installed.
#pragma once

namespace vantor {

/// True when the consumer product is installed: HKLM\Software\Vexora\VSC opens and its value MarketReleaseName or
/// MarketReleaseVer can be read into 62 bytes or, when that key does not open, HKLM\Software\VxeAV opens and its
/// value VersionInfo can be read in the same way.
bool IsConsumerProductInstalled();

} // namespace vantor
