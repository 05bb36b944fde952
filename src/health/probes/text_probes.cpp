#include "health/probes/text_probes.h"

#include "health/record/report.h"
#include "platform/registry.h"
#include "platform/text.h"
#include "run/log/logging.h"

#include <array>
#include <cstdio>

namespace vantor {
namespace {

/// A value that becomes an item.
struct TextSource {
    const wchar_t* key;
    const wchar_t* value;
    const char* prefix = "";
};

void AddText(TextItems& items, const TextSource& source)
{
    const auto key = RegistryKey::OpenForReading(source.key);
    if (const auto text = key ? key->QueryWholeText(source.value) : std::nullopt) {
        items.push_back(source.prefix + ToUtf8(*text));
    }
}

/// What a probe found, logged under its name; "Unavailable" when that is nothing.
TextItems Conclude(const std::string& probe, TextItems items)
{
    if (items.empty()) {
        LogWarning(probe + " returned error");
        return {kUnavailable};
    }
    std::string text;
    for (const std::string& item : items) {
        text += (text.empty() ? "" : ", ") + item;
    }
    LogTrace(probe + ": " + text);
    return items;
}

} // namespace

TextItems GetProductInfo()
{
    const ScopeTrace scope("GetProductInfo");
    TextItems items;
    for (const TextSource& source : {
             TextSource{L"Software\\Vexora\\Endpoint\\AV", L"ProductVersion"},
             TextSource{L"Software\\VxeAV", L"VersionInfo"},
             TextSource{L"Software\\Vexora\\VSC", L"MarketReleaseName", "HSQ_"},
             TextSource{L"Software\\Vexora\\VSC", L"MarketReleaseVer", "HSQ_"},
         }) {
        AddText(items, source);
    }
    return Conclude("GetProductInfo", std::move(items));
}

TextItems GetCPUInfo()
{
    const ScopeTrace scope("GetCPUInfo");
    TextItems items;
    AddText(items, {L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", L"Identifier"});
    return Conclude("GetCPUInfo", std::move(items));
}

TextItems GetOSLanguageInfo()
{
    const ScopeTrace scope("GetOSLanguageInfo");
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "0x%04x", ::GetUserDefaultUILanguage());
    return Conclude("GetOSLanguageInfo", {text.data()});
}

TextItems GetATPInfo()
{
    const ScopeTrace scope("GetATPInfo");
    TextItems items;
    AddText(items, {L"Software\\Vexora\\Endpoint\\ATP", L"ProductVersion"});
    AddText(items, {L"Software\\Vexora\\Endpoint\\ATP", L"BuildNumber"});
    return Conclude("GetATPInfo", std::move(items));
}

TextItems GetGPUInfo()
{
    const std::wstring path = L"SYSTEM\\ControlSet001\\Control\\Class\\{4d36e968-e325-11ce-bfc1-08002be10318}\\";

    const ScopeTrace scope("GetGPUInfo");
    const auto adapters = RegistryKey::OpenForReading(path.c_str());
    if (!adapters) {
        LogWarning("GetGPUInfo: Failed to open " + ToNarrow(path));
        return {kUnavailable};
    }
    TextItems items;
    for (const std::wstring& name : adapters->SubkeyNames()) {
        const std::wstring adapterPath = path + name;
        const auto adapter = RegistryKey::OpenForReading(adapterPath.c_str());
        if (!adapter) {
            LogWarning("GetGPUInfo: Failed to open " + ToNarrow(adapterPath));
        } else if (const auto text = adapter->QueryWholeText(L"DriverDesc")) {
            items.push_back(ToUtf8(*text));
        } else {
            LogWarning("GetGPUInfo: RegQueryValueExW Failed to query 'DriverDesc' in " + ToNarrow(adapterPath));
        }
    }
    return Conclude("GetGPUInfo", std::move(items));
}

TextItems CollectTextItems()
{
    TextItems items;
    for (const auto probe : {GetProductInfo, GetCPUInfo, GetOSLanguageInfo, GetATPInfo, GetGPUInfo}) {
        const TextItems found = probe();
        items.insert(items.end(), found.begin(), found.end());
    }
    return items;
}

} // namespace vantor
