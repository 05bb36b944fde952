// The registry keys and values that the program uses, all under HKEY_LOCAL_MACHINE and, with one exception, in the
// 64-bit view.
#pragma once

#include "platform/registry.h"

namespace vantor::registry {

// The updater.
inline constexpr wchar_t kUpdaterKey[] = L"Software\\Vexora\\AVSolution\\DS\\DS";
inline constexpr RegistryValue kLogPath{kUpdaterKey, L"szVanTORLog"}; ///< the log file of this program
inline constexpr RegistryValue kThrottleMode{kUpdaterKey, L"dwUpdateThrottleMode"};
inline constexpr RegistryValue kContentMajor{kUpdaterKey, L"dwContentMajorVersion"};
inline constexpr RegistryValue kContentMinor{kUpdaterKey, L"dwContentMinorVersion"};
inline constexpr RegistryValue kRestarts{kUpdaterKey, L"dwRestartCount"};
inline constexpr RegistryValue kTotalRestarts{kUpdaterKey, L"dwRestartCountTotal"};

// The scanner.
inline constexpr wchar_t kEngineKey[] = L"Software\\Vexora\\AVSolution\\AVS\\AVS";
inline constexpr RegistryValue kEngineVersion{kEngineKey, L"szVXCoreVersion"}; ///< five numbers separated by dots
inline constexpr wchar_t kScannerDataKey[] = L"Software\\Vexora\\AVSolution\\scannerdata\\ContentRefresh";
inline constexpr RegistryValue kCorruptions{kScannerDataKey, L"dwCorruptionCount"};
inline constexpr RegistryValue kTotalCorruptions{kScannerDataKey, L"dwTotalCorruptionCount"};
/// The product platform's version; the only value in the 32-bit view.
inline constexpr RegistryValue kSystemCoreVersion{L"SOFTWARE\\WOW6432Node\\Vexora\\SystemCore", L"system_core_version"};

// The reputation client.
inline constexpr wchar_t kReputationKey[] = L"Software\\Vexora\\AVSolution\\VXSHIELDGLOBAL\\GLOBAL";
inline constexpr RegistryValue kPrefersIpv6{kReputationKey, L"vriuseipv6"};
inline constexpr RegistryValue kCustomerId{kReputationKey, L"customerid"};
inline constexpr RegistryValue kClientId{kReputationKey, L"clientid"};
inline constexpr RegistryValue kConsoleId{kReputationKey, L"xpoguid"}; ///< of the management console
/// While this key exists, whatever its contents, reports go to a receiver on this machine.
inline constexpr wchar_t kLocalReceiverKey[] = L"SOFTWARE\\Vexora\\AVSolution\\SetVriLocalHost";

// The installed products: endpoint (common part, anti-virus, ATP), consumer, and the earlier anti-virus.
inline constexpr wchar_t kEndpointKey[] = L"SOFTWARE\\Vexora\\Endpoint\\Common";
inline constexpr RegistryValue kEndpointDirectory32{kEndpointKey, L"szInstallDir32"};
inline constexpr RegistryValue kEndpointDirectory64{kEndpointKey, L"szInstallDir64"};
inline constexpr RegistryValue kEndpointVersion{L"Software\\Vexora\\Endpoint\\AV", L"ProductVersion"};
inline constexpr wchar_t kAtpKey[] = L"Software\\Vexora\\Endpoint\\ATP";
inline constexpr RegistryValue kAtpVersion{kAtpKey, L"ProductVersion"};
inline constexpr RegistryValue kAtpBuild{kAtpKey, L"BuildNumber"};
inline constexpr RegistryValue kAtpEnabled{kAtpKey, L"enabled"};             ///< bit 0
inline constexpr RegistryValue kAtpObserves{kAtpKey, L"observeModeEnabled"}; ///< bit 0
inline constexpr wchar_t kConsumerKey[] = L"Software\\Vexora\\VSC";
inline constexpr RegistryValue kConsumerName{kConsumerKey, L"MarketReleaseName"};
inline constexpr RegistryValue kConsumerVersion{kConsumerKey, L"MarketReleaseVer"};
inline constexpr RegistryValue kConsumerDirectory{kConsumerKey, L"InstallDir"};
inline constexpr RegistryValue kAntiVirusDirectory{L"SOFTWARE\\Vexora\\VxeAV", L"InstallDir"};
inline constexpr wchar_t kAntiVirusKey[] = L"Software\\VxeAV";
inline constexpr RegistryValue kAntiVirusVersion{kAntiVirusKey, L"VersionInfo"};

// The product's filter driver.
inline constexpr wchar_t kFilterDriverKey[] = L"System\\CurrentControlSet\\Services\\vxedisk";
inline constexpr RegistryValue kFilterDriverStart{kFilterDriverKey, L"Start"};           ///< a service's start type
inline constexpr RegistryValue kFilterDriverDeleteFlag{kFilterDriverKey, L"DeleteFlag"}; ///< must not be present
inline constexpr RegistryValue kDiskFilters{
    ///< REG_MULTI_SZ: the drivers above the disk class
    L"System\\CurrentControlSet\\Control\\Class\\{4d36e967-e325-11ce-bfc1-08002be10318}", L"UpperFilters"};

// Windows. ControlSet001 is the current control set unless Windows fell back to the last known good one.
/// 0 tells Windows Update that the anti-malware product is compatible with security updates.
inline constexpr RegistryValue kQualityCompat{L"Software\\Microsoft\\Windows\\CurrentVersion\\QualityCompat",
                                              L"cadca5fe-87d3-4b96-b7fb-a231484277cc"};
inline constexpr RegistryValue kWindowsEdition{L"SYSTEM\\ControlSet001\\Control\\ProductOptions", L"ProductType"};
/// Spelt with a lower-case s, as support knows this path.
inline constexpr RegistryValue kCaseSensitivity{L"SYSTEM\\CurrentControlset\\Control\\FileSystem",
                                                L"NtfsEnableDirCaseSensitivity"}; ///< bits 0 and 1
inline constexpr RegistryValue kMachineGuid{L"Software\\Microsoft\\Cryptography", L"MachineGuid"};
inline constexpr RegistryValue kProcessor{L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", L"Identifier"};
/// The display adapters, with one subkey each, whose name is appended.
inline constexpr wchar_t kDisplayAdaptersKey[] =
    L"SYSTEM\\ControlSet001\\Control\\Class\\{4d36e968-e325-11ce-bfc1-08002be10318}\\";
inline constexpr wchar_t kAdapterName[] = L"DriverDesc";

} // namespace vantor::registry
