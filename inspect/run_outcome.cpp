#include "inspect/run_outcome.h"

#include "inspect/field_texts.h"

#include <algorithm>

namespace vantor::inspect {
namespace {

/// What a part of a logged failure stands for.
struct Explanation {
    std::string_view part;
    const char* text;
};

constexpr Explanation kExplanations[] = {
    {"ERROR_WINHTTP_CANNOT_CONNECT", "nothing answers at the service's address, or a firewall refuses"},
    {"ERROR_WINHTTP_RESEND_REQUEST", "the proxy asked for one logon step after the other"},
    {"ERROR_WINHTTP_TIMEOUT", "no answer came in time"},
    {"ERROR_WINHTTP_NAME_NOT_RESOLVED", "a host name, the service's or the proxy's, cannot be resolved"},
    {"ERROR_WINHTTP_CONNECTION_ERROR", "the connection was broken off"},
    {"ERROR_WINHTTP_INVALID_SERVER_RESPONSE",
     "the connection was broken off before an answer, or the answer is no HTTP"},
    {"ERROR_WINHTTP_SECURE_CHANNEL_ERROR", "TLS could not be agreed on, or the server's certificate has expired"},
    {"ERROR_WINHTTP_SECURE_FAILURE", "the server's certificate was not accepted"},
    {"ERROR_WINHTTP_LOGIN_FAILURE", "the proxy refused the credentials"},
    {"(10060)", "the answer stopped coming"},
    {"WinHTTP status: 407", "the proxy wants credentials, or refused those it got"},
    {"WinHTTP status: ", "the service did not answer with 200"},
    {"http not initialised", "the connection could not be set up"},
    {"lacks", "this Windows lacks a function that is needed"},
    {"invalid arguments", "the report is empty or too large"},
};

/// Warnings and errors that a logon at a proxy leaves on its way, whether it succeeds or not.
constexpr std::string_view kLogonSteps[] = {"ERROR_WINHTTP_RESEND_REQUEST 12032",
                                            "HTTPRequest::Send() failed, retrying",
                                            "Unable to parse certificate data from connection"};

constexpr char kStopped[] = ": the run was stopped there, or is still under way";

std::string FirstLine(std::string_view text)
{
    return std::string(text.substr(0, text.find('\n')));
}

bool Contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

bool IsLogonStep(const RunEvent& event)
{
    return std::ranges::any_of(kLogonSteps, [&](std::string_view part) { return Contains(event.text, part); });
}

std::string FailureText(const Run& run, const RunFacts& facts)
{
    if (facts.isInspected) {
        return "the server's certificate is not from a pinned issuer, most likely an inspecting proxy's";
    }
    const auto* const known = std::ranges::find_if(
        kExplanations, [&](const Explanation& one) { return Contains(facts.sendFailure, one.part); });
    const std::string logged =
        FirstLine(facts.sendFailure) + (facts.setUpFailure.empty() ? "" : "; " + FirstLine(facts.setUpFailure));
    if (std::ranges::any_of(run.events,
                            [](const RunEvent& one) { return Contains(one.text, "did not build the tunnel"); })) {
        return "the proxy did not let the request through to the service (" + logged + ')';
    }
    return known == std::end(kExplanations) ? logged : known->text + (" (" + logged + ')');
}

std::string WayText(const RunFacts& facts)
{
    if (facts.fellBack) {
        return "directly, after the proxy could not be reached";
    }
    if (facts.hasNamedProxy) {
        return "through the proxy given on the command line";
    }
    return facts.proxy.empty() ? "directly" : "through the detected proxy " + facts.proxy;
}

std::string CountText(const Run& run, EventKind kind, const std::string& noun)
{
    const bool arrived = run.delivery == Delivery::delivered;
    const auto count = std::ranges::count_if(
        run.events, [&](const RunEvent& event) { return event.kind == kind && !(arrived && IsLogonStep(event)); });
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

/// What became of the pulse; empty when that is not known, or there was none.
std::string DeliveryText(const Run& run, const RunFacts& facts)
{
    const std::string mode =
        run.pulse ? std::string(ModeText(run.pulse->report.record.mode)) + " pulse" : std::string("pulse");
    switch (run.delivery) {
    case Delivery::failed:
        return "The " + mode + " was not delivered" +
               (facts.fellBack ? ", not in a second, direct try either: " : ": ") + FailureText(run, facts);
    case Delivery::delivered:
        return "The " + mode + " was delivered " + WayText(facts);
    case Delivery::unknown:
    case Delivery::notTried:
        break;
    }
    return {};
}

/// How the run ended otherwise than by its last stage, as a part of a sentence; empty when nothing tells of that.
std::string EndText(const RunFacts& facts)
{
    if (!facts.fatalError.empty()) {
        return "the run ended early, with exit code " + std::to_string(facts.exitCode) + ": " +
               FirstLine(facts.fatalError);
    }
    return facts.innermostScope.empty() ? std::string() : "the log ends inside " + facts.innermostScope + kStopped;
}

std::string SentenceStart(const Run& run, const RunFacts& facts)
{
    const std::string delivery = DeliveryText(run, facts);
    std::string end = EndText(facts);
    if (!delivery.empty()) {
        return delivery + (end.empty() ? "" : "; ") + end;
    }
    if (!end.empty()) {
        end.front() = 'T';
        return end;
    }
    return facts.hasMode ? "The log ends before the pulse was sent (after " + FirstLine(facts.lastStep) + ')' + kStopped
                         : "The run sent nothing: it had no mode";
}

} // namespace

void ConcludeRun(Run& run, const RunFacts& facts)
{
    const bool isCut = !facts.innermostScope.empty();
    if (!facts.sendFailure.empty() || (facts.reachedSending && !facts.leftSending && !isCut)) {
        run.delivery = Delivery::failed;
    } else if (facts.leftSending) {
        run.delivery = Delivery::delivered;
    } else if (isCut || (facts.hasMode && facts.fatalError.empty())) {
        run.delivery = Delivery::unknown;
    }
    run.outcome = SentenceStart(run, facts) + "; " + CountText(run, EventKind::warning, "warning") + ", " +
                  CountText(run, EventKind::error, "error") + '.';
}

} // namespace vantor::inspect
