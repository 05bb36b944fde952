#include "service/http_exchange.h"

#include <algorithm>
#include <sstream>

namespace vantor::service {
namespace {

using namespace std::chrono_literals;

constexpr char kPulseTarget[] = "/1";
constexpr std::size_t kMostRequests = 100;
constexpr auto kIdleLimit = 10s;
constexpr std::size_t kPieceBytes = 16'384;
constexpr char kPlainText[] = "text/plain";
constexpr char kJson[] = "application/json";
constexpr char kAccepted[] = R"({"accepted":true})";

std::string UnreadReason(int status)
{
    switch (status) {
    case 413:
        return "the body is larger than " + std::to_string(HttpExchange::kBodyLimitBytes) + " bytes";
    case 414:
        return "the request line is too long";
    default:
        return "this is no complete HTTP request";
    }
}

bool HasNoBody(int status)
{
    return status == 204 || status == 304;
}

std::vector<std::pair<std::string, std::string>> HeadersOf(const std::string& head)
{
    std::vector<std::pair<std::string, std::string>> headers;
    std::istringstream lines(head);
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line)) {
        const std::size_t colon = line.find(':');
        if (colon == std::string::npos) {
            continue;
        }
        const std::size_t first = std::min(line.find_first_not_of(" \t", colon + 1), line.size());
        const std::size_t end = line.find_last_not_of(" \t\r") + 1;
        headers.emplace_back(line.substr(0, colon), line.substr(first, std::max(first, end) - first));
    }
    return headers;
}

} // namespace

HttpExchange::HttpExchange(TlsStream& stream, RequestJudge& judge) : m_stream(stream), m_judge(judge)
{
    // A server without a listener looks to cpp-httplib like one that shuts down: it would send no body.
    svr_sock_ = stream.socket();
    set_payload_max_length(kBodyLimitBytes);
    set_keep_alive_max_count(kMostRequests);
    set_keep_alive_timeout(std::chrono::seconds(kIdleLimit).count());
    set_pre_routing_handler([this](const auto& request, auto& response) { return RefuseEarly(request, response); });
    Post(kPulseTarget,
         [this](const httplib::Request& request, httplib::Response& response) { AnswerPulse(request, response); });
    const Handler onError = [this](const auto& request, auto& response) { RefuseUnread(request, response); };
    set_error_handler(onError);
}

void HttpExchange::Run()
{
    for (std::size_t count = 1; count <= kMostRequests && !m_last && m_stream.WaitForRequest(kIdleLimit); ++count) {
        m_head.clear();
        m_reported = false;
        bool peerCloses = false;
        const auto prepare = [this](httplib::Request& request) { Prepare(request); };
        m_last = !process_request(m_stream, count == kMostRequests, peerCloses, prepare) || peerCloses || m_last;
    }
}

void HttpExchange::Prepare(httplib::Request& request)
{
    m_head = m_stream.TakeTranscript();
    // These would make cpp-httplib unpack, split or shorten bodies; here the bytes count as they are.
    for (const char* name : {"Content-Type", "Content-Encoding", "Accept-Encoding"}) {
        request.headers.erase(name);
    }
    request.ranges.clear();
}

/// Refuses what is no POST of a body to /1 before anything more is read, and therefore ends the connection with it.
httplib::Server::HandlerResponse HttpExchange::RefuseEarly(const httplib::Request& request, httplib::Response& response)
{
    m_last = true;
    if (request.target != kPulseTarget) {
        Refuse(request, response, 404, "there is nothing at this path");
    } else if (request.method != "POST") {
        response.set_header("Allow", "POST");
        Refuse(request, response, 405, "pulses are posted");
    } else if (!request.has_header("Content-Length") && !request.has_header("Transfer-Encoding")) {
        Refuse(request, response, 411, "the body has no length");
    } else {
        m_last = false;
        return HandlerResponse::Unhandled;
    }
    return HandlerResponse::Handled;
}

void HttpExchange::AnswerPulse(const httplib::Request& request, httplib::Response& response)
{
    if (request.body.size() > kBodyLimitBytes) { // in chunks; an announced length has been looked at before
        response.status = 413;
        RefuseUnread(request, response);
        return;
    }
    const std::string reason = m_judge.JudgePulse(request.body);
    if (reason.empty()) {
        m_reported = true;
        m_judge.OnRequest(Received(request));
        response.status = 200;
        response.set_content(kAccepted, kJson);
    } else {
        Refuse(request, response, 400, reason);
    }
    const Behaviour behaviour = m_judge.CurrentBehaviour();
    m_stream.Pause(behaviour.delay);
    if (behaviour.cut == CutPoint::beforeAnswer) {
        m_stream.Cut();
        return;
    }
    Misbehave(behaviour, response.body, response);
}

void HttpExchange::Misbehave(const Behaviour& behaviour, std::string content, httplib::Response& response)
{
    response.status = behaviour.status.value_or(response.status);
    for (const auto& [name, value] : behaviour.headers) {
        response.set_header(name, value);
    }
    if (behaviour.bodyBytes) {
        content.assign(*behaviour.bodyBytes, 'x');
    } else if (HasNoBody(response.status)) {
        content.clear();
    }
    const std::string type = response.get_header_value("Content-Type");
    const bool uneven = behaviour.stallAfter || behaviour.cut == CutPoint::inBody;
    response.body.clear();
    if (behaviour.chunked) {
        response.set_chunked_content_provider(type, [=, this](std::size_t, httplib::DataSink& sink) {
            const bool whole = WriteUnevenly(behaviour, content, sink);
            sink.done();
            return whole;
        });
    } else if (uneven && !content.empty()) {
        const auto write = [=, this](std::size_t, std::size_t, httplib::DataSink& sink) {
            return WriteUnevenly(behaviour, content, sink);
        };
        response.set_content_provider(content.size(), type, write);
    } else {
        response.set_content(content, type);
    }
}

/// Writes the whole body, with the pause or up to the cut that is asked for. False ends the connection.
bool HttpExchange::WriteUnevenly(const Behaviour& behaviour, const std::string& content, httplib::DataSink& sink)
{
    const auto write = [&](std::size_t begin, std::size_t end) {
        bool written = true;
        for (std::size_t position = begin; written && position < end; position += kPieceBytes) {
            written = sink.write(content.data() + position, std::min(kPieceBytes, end - position));
        }
        return written;
    };
    if (behaviour.cut == CutPoint::inBody) {
        write(0, content.size() / 2);
        m_stream.Cut();
        return false;
    }
    const std::size_t stall = std::min(behaviour.stallAfter.value_or(content.size()), content.size());
    if (!write(0, stall)) {
        return false;
    }
    if (behaviour.stallAfter) {
        m_stream.Pause(behaviour.stallFor);
    }
    return write(stall, content.size());
}

void HttpExchange::Refuse(const httplib::Request& request, httplib::Response& response, int status,
                          const std::string& reason)
{
    m_reported = true;
    ReceivedRequest received = Received(request);
    received.refusal = reason;
    m_judge.OnRequest(received);
    if (m_last) {
        response.set_header("Connection", "close");
    }
    response.status = status;
    response.set_content(reason + '\n', kPlainText);
}

/// Called for every error status, also for those that cpp-httplib gives before anything of this class is asked.
void HttpExchange::RefuseUnread(const httplib::Request& request, httplib::Response& response)
{
    if (!m_reported) {
        m_last = true;
        Refuse(request, response, response.status, UnreadReason(response.status));
    }
}

ReceivedRequest HttpExchange::Received(const httplib::Request& request) const
{
    return {request.method, request.target, m_head, HeadersOf(m_head), request.body, {}};
}

} // namespace vantor::service
