#include "telemetry/payload_text.h"

#include "run/log/log_texts.h"

namespace vantor {
namespace {

constexpr char kProtocolVersion[] = "1.2";

void AddString(std::string& text, std::string_view key, std::string_view value)
{
    text.append(",\"").append(key).append("\":\"").append(value).append("\"");
}

void AddBare(std::string& text, std::string_view key, std::string_view value)
{
    text.append(",\"").append(key).append("\":").append(value);
}

} // namespace

std::string CiSectionText(const ClientIdentification& client)
{
    std::string text = texts::kBodyBegins + (R"({"affid":")" + client.affid) + '"';
    AddString(text, "cid", client.cid);
    AddString(text, "cliid", client.cliid);
    if (client.xpoid != "0") {
        AddString(text, "xpoid", client.xpoid);
    }
    AddBare(text, "pev", kProtocolVersion);
    AddString(text, "prn", client.prn);
    AddString(text, "pv", client.pv);
    AddBare(text, "rid", client.rid);
    if (client.readOnlyMarker == "1") {
        AddBare(text, "ro", "true");
    }
    AddString(text, "sdkv", client.sdkv.value_or("<null>"));
    text += '}';
    return text;
}

std::string PostDataText(std::string_view ciSection, std::string_view reportBase64)
{
    std::string text(ciSection);
    text.append(R"(,"rpt":{"vantor":")").append(reportBase64).append(R"("}})");
    return text;
}

} // namespace vantor
