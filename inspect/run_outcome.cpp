#include "inspect/run_outcome.h"

#include "inspect/field_texts.h"
#include "run/log/log_texts.h"
#include "telemetry/winhttp/code_names.h"

#include <algorithm>

namespace vantor::inspect {
namespace {

/// Explains a failure that contains this text.
const struct Explanation {
    std::string part;
    const char* text;
} kExplanations[] = {
    {NamedWinHttpError(12029), "nothing answers at the service's address, or a firewall refuses"},
    {NamedWinHttpError(12032), "the proxy asked for one logon step after the other"},
    {NamedWinHttpError(12002), "no answer came in time"},
    {NamedWinHttpError(12007), "a host name, the service's or the proxy's, cannot be resolved"},
    {NamedWinHttpError(12030), "the connection was broken off"},
    {NamedWinHttpError(12152), "the connection was broken off before an answer, or the answer is no HTTP"},
    {NamedWinHttpError(12157), "TLS could not be agreed on, or the server's certificate has expired"},
    {NamedWinHttpError(12175), "the server's certificate was not accepted"},
    {NamedWinHttpError(12015), "the proxy refused the credentials"},
    {NamedWinHttpError(10060), "the answer stopped coming"},
    {texts::kWinHttpStatus + std::string("407"), "the proxy wants credentials, or refused those it got"},
    {texts::kWinHttpStatus, "the service did not answer with 200"},
    {texts::kHttpNotInitialised, "the connection could not be set up"},
    {texts::kThisWindowsLacks, "this Windows lacks a function that is needed"},
    {texts::kInvalidArguments, "the report is empty or too large"},
};

constexpr char kStopped[] = ": the run was stopped there, or is still under way";

std::string FirstLine(std::string_view text)
{
    return std::string(text.substr(0, text.find('\n')));
}

bool Contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

std::string FailureText(const RunFacts& facts)
{
    if (facts.isInspected) {
        return "the server's certificate is not from a pinned issuer, most likely an inspecting proxy's";
    }
    const auto* const known = std::ranges::find_if(
        kExplanations, [&](const Explanation& one) { return Contains(facts.sendFailure, one.part); });
    const std::string logged =
        FirstLine(facts.sendFailure) + (facts.setUpFailure.empty() ? "" : "; " + FirstLine(facts.setUpFailure));
    if (facts.isTunnelRefused) {
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

std::string CountText(std::size_t count, const std::string& noun)
{
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

/// What became of the pulse; empty if that is unknown or there was none.
std::string DeliveryText(const Run& run, const RunFacts& facts)
{
    const std::string mode =
        run.pulse ? std::string(ModeText(run.pulse->report.record.mode)) + " pulse" : std::string("pulse");
    switch (run.delivery) {
    case Delivery::failed:
        return "The " + mode + " was not delivered" +
               (facts.fellBack ? ", not in a second, direct try either: " : ": ") + FailureText(facts);
    case Delivery::delivered:
        return "The " + mode + " was delivered " + WayText(facts);
    case Delivery::unknown:
    case Delivery::notTried:
        break;
    }
    return {};
}

/// How the run ended if not with its last stage, as part of a sentence; empty if there is no sign of that.
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
    // A proxy logon logs warnings and errors on its way, which mean nothing if the pulse arrived.
    const bool arrived = run.delivery == Delivery::delivered;
    run.outcome = SentenceStart(run, facts) + "; " +
                  CountText(facts.warningCount - (arrived ? facts.logonWarningCount : 0), "warning") + ", " +
                  CountText(facts.errorCount - (arrived ? facts.logonErrorCount : 0), "error") + '.';
}

} // namespace vantor::inspect
