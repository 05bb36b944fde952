#include "health/probes/text_probes.h"

#include "health/record/report.h"
#include "platform/text/encoding.h"
#include "platform/text/formatting.h"
#include "run/log/logging.h"
#include "run/product/registry_values.h"

namespace vantor {
namespace {

/// Adds the value as an item if it can be read.
void AddText(TextItems& items, const RegistryValue& value, const std::string& prefix = "")
{
    if (const auto text = ReadWholeText(value)) {
        items.push_back(prefix + ToUtf8(*text));
    }
}

/// Logs what a probe found and returns it, or "Unavailable" if there are no items.
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
    AddText(items, registry::kEndpointVersion);
    AddText(items, registry::kAntiVirusVersion);
    AddText(items, registry::kConsumerName, "HSQ_");
    AddText(items, registry::kConsumerVersion, "HSQ_");
    return Conclude("GetProductInfo", std::move(items));
}

TextItems GetCPUInfo()
{
    const ScopeTrace scope("GetCPUInfo");
    TextItems items;
    AddText(items, registry::kProcessor);
    return Conclude("GetCPUInfo", std::move(items));
}

TextItems GetOSLanguageInfo()
{
    const ScopeTrace scope("GetOSLanguageInfo");
    return Conclude("GetOSLanguageInfo", {"0x" + Hexadecimal(::GetUserDefaultUILanguage(), 4)});
}

TextItems GetATPInfo()
{
    const ScopeTrace scope("GetATPInfo");
    TextItems items;
    AddText(items, registry::kAtpVersion);
    AddText(items, registry::kAtpBuild);
    return Conclude("GetATPInfo", std::move(items));
}

TextItems GetGPUInfo()
{
    const std::wstring path = registry::kDisplayAdaptersKey;

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
        } else if (const auto text = adapter->QueryWholeText(registry::kAdapterName)) {
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
