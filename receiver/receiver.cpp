#include "receiver/receiver.h"

#include "inspect/printable_text.h"
#include "receiver/answer.h"
#include "receiver/connections.h"
#include "receiver/fleet_page.h"
#include "receiver/pulse_page.h"

#include <httplib.h>

#include <cerrno>
#include <regex>
#include <system_error>

namespace vantor::receiver {
namespace {

using namespace std::chrono_literals;

constexpr char kAddress[] = "127.0.0.1";
constexpr char kPulseTarget[] = "(https://localhost(:[0-9]+)?)?/1"; // Wine sends the full URL through a tunnel
constexpr char kPagePath[] = "/";
constexpr char kFleetPath[] = "/fleet";
constexpr std::size_t kBodyLimitBytes = 65'536;
constexpr auto kIdleTimeout = 5s;
constexpr std::time_t kIdleLimitSeconds = 10;
constexpr std::size_t kMaxRequestsPerConnection = 100;

/// Whether a request has arrived on the connection that this thread serves.
thread_local bool requestSeen = false;

/// A thread pool that serves every connection with the same function.
class Workers final : public httplib::TaskQueue {
public:
    using Serve = std::function<void(const std::function<void()>& connection)>;

    explicit Workers(Serve serve) : m_serve(std::move(serve)), m_threads(Receiver::kMaxConnections) {}

    /// void in older releases of cpp-httplib; in newer ones, whether there was room for the connection.
    using Enqueued = decltype(std::declval<TaskQueue&>().enqueue({}));

    Enqueued enqueue(std::function<void()> connection) override
    {
        return m_threads.enqueue([this, connection = std::move(connection)] { m_serve(connection); });
    }

    void shutdown() override { m_threads.shutdown(); }

private:
    const Serve m_serve;
    httplib::ThreadPool m_threads;
};

bool IsForPulses(const httplib::Request& request)
{
    static const std::regex pattern(kPulseTarget);
    return std::regex_match(request.target, pattern);
}

bool IsPacked(const httplib::Request& request)
{
    return request.has_header("Content-Encoding") || request.is_multipart_form_data();
}

bool IsForPage(const httplib::Request& request)
{
    return (request.method == "GET" || request.method == "HEAD") &&
           (request.path == kPagePath || request.path == kFleetPath);
}

bool HasLength(const httplib::Request& request)
{
    return request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
}

/// The status and reason for a request that is not a POST of a pulse, or to which cpp-httplib gave an error status.
std::pair<int, std::string> RefusalOf(const httplib::Request& request, int status)
{
    if (status == 413) {
        return {413, "the body is larger than " + std::to_string(kBodyLimitBytes) + " bytes"};
    }
    if (status >= 400 && status != 404) {
        return {status, "this is no complete HTTP request"};
    }
    if (!IsForPulses(request)) {
        return {404, "there is nothing at this path"};
    }
    if (request.method != "POST") {
        return {405, "pulses are posted"};
    }
    return HasLength(request) ? std::pair(415, "the body is compressed or multipart")
                              : std::pair(411, "the body has no length");
}

/// Whether a proxy with this behaviour lets the request through.
bool IsAdmitted(const Behaviour& behaviour, const httplib::Request& request)
{
    const std::string shown = request.get_header_value("Proxy-Authorization");
    return behaviour.challenges.empty() ||
           (behaviour.authorization.empty() ? !shown.empty() : shown == behaviour.authorization);
}

ReceivedRequest Received(const httplib::Request& request)
{
    ReceivedRequest received{request.method, request.target, {}, {}, {}};
    for (const auto& [name, value] : request.headers) {
        // cpp-httplib adds these four itself.
        if (name != "REMOTE_ADDR" && name != "REMOTE_PORT" && name != "LOCAL_ADDR" && name != "LOCAL_PORT") {
            received.headers.emplace_back(name, value);
        }
    }
    return received;
}

template <typename Item>
void Keep(std::deque<Item>& items, Item item)
{
    items.push_back(std::move(item));
    if (items.size() > Receiver::kMaxKept) {
        items.pop_front();
    }
}

std::string RefusalLine(const ReceivedRequest& request)
{
    constexpr std::size_t kShownBytes = 60;
    const std::string line = request.method + (request.method.empty() ? "" : " ") + request.target;
    return "refused " + inspect::PrintableText(line, kShownBytes) + (line.empty() ? "" : ": ") + request.refusal;
}

} // namespace

Receiver::Receiver(ReceiverConfig config) : m_config(std::move(config)) {}

Receiver::~Receiver()
{
    Stop();
}

void Receiver::SetCallbacks(PulseCallback onPulse, RefusalCallback onRefusal)
{
    const std::lock_guard lock(m_callbackMutex);
    m_onPulse = std::move(onPulse);
    m_onRefusal = std::move(onRefusal);
}

void Receiver::Start()
{
    Stop();
    SetUpServer();
    int listener = -1;
    m_server->set_socket_options([&](int socket) {
        // Allows a port whose last connections are in TIME_WAIT, but not one that another program listens on.
        const int on = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        listener = socket;
    });
    int port = m_config.port;
    errno = 0;
    if (port == 0) {
        port = m_server->bind_to_any_port(kAddress);
    } else if (!m_server->bind_to_port(kAddress, port)) {
        port = -1;
    }
    if (port < 0) {
        const std::string where = "port " + std::to_string(m_config.port);
        throw ReceiverError(errno == EADDRINUSE
                                ? where + " is in use by another program"
                                : "cannot listen on " + where + ": " + std::generic_category().message(errno));
    }
    ::listen(listener, SOMAXCONN); // with cpp-httplib's own queue of five, a sixth client waits for a second
    m_port = static_cast<std::uint16_t>(port);
    const auto running = std::make_shared<std::promise<void>>();
    m_server->new_task_queue = [this, running] {
        auto* const workers = new Workers([this](const auto& connection) { Serve(connection); });
        running->set_value();
        return workers; // now owned by cpp-httplib
    };
    m_serving = std::async(std::launch::async, [this] { m_server->listen_after_bind(); });
    running->get_future().wait(); // before that the server cannot be stopped
}

void Receiver::SetUpServer()
{
    ::ERR_clear_error();
    m_server = std::make_unique<httplib::SSLServer>(m_config.certificateFile.c_str(), m_config.keyFile.c_str());
    if (!m_server->is_valid()) {
        throw ReceiverError("cannot use the certificate \"" + m_config.certificateFile + "\" with the key \"" +
                            m_config.keyFile + "\": " + FirstSslError("unknown reason"));
    }
    ::SSL_CTX_set_min_proto_version(m_server->ssl_context(), TLS1_2_VERSION);
    m_server->set_tcp_nodelay(true);
    m_server->set_read_timeout(kIdleTimeout);
    m_server->set_keep_alive_timeout(kIdleLimitSeconds);
    m_server->set_keep_alive_max_count(kMaxRequestsPerConnection);
    m_server->set_payload_max_length(kBodyLimitBytes);
    m_server->Post(kPulseTarget, [this](const httplib::Request& request, httplib::Response& response,
                                        const httplib::ContentReader& read) { Answer(request, response, read); });
    m_server->Get(kPagePath, [this](const auto& request, auto& response) { AnswerPage(request, response); });
    m_server->Get(kFleetPath, [this](const auto& request, auto& response) { AnswerPage(request, response); });
    // Bodies without a length, for which cpp-httplib would wait in vain, and those that it would unpack are not read.
    m_server->set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
        if (IsForPage(request)) {
            return httplib::Server::HandlerResponse::Unhandled;
        }
        if (HasLength(request) && !(IsForPulses(request) && IsPacked(request))) {
            return httplib::Server::HandlerResponse::Unhandled;
        }
        Refuse(request, response);
        return httplib::Server::HandlerResponse::Handled;
    });
    // Called for every error status. Answers made here have a content type; cpp-httplib's own do not.
    m_server->set_error_handler(httplib::Server::Handler([this](const auto& request, auto& response) {
        if (!response.has_header("Content-Type")) {
            Refuse(request, response);
        }
    }));
}

void Receiver::Stop()
{
    if (!m_serving.valid()) {
        return;
    }
    m_server->stop();
    // A connection ends when it is shut down. The last one may be accepted only after the first round.
    while (m_serving.wait_for(20ms) != std::future_status::ready) {
        ShutDownConnections(m_port);
    }
    m_serving.get();
}

void Receiver::Serve(const std::function<void()>& connection)
{
    ++m_connectionCount;
    requestSeen = false;
    ::ERR_clear_error();
    connection();
    if (!requestSeen) {
        ReportRefusal("a connection brought no request: " + FirstSslError("the peer was silent or closed"));
    }
}

void Receiver::SetBehaviour(const Behaviour& behaviour)
{
    const std::lock_guard lock(m_mutex);
    m_behaviour = behaviour;
}

void Receiver::AddPulse(DatedPulse pulse)
{
    const std::lock_guard lock(m_mutex);
    Keep(m_pulses, std::move(pulse));
}

std::vector<DatedPulse> Receiver::Pulses() const
{
    const std::lock_guard lock(m_mutex);
    return {m_pulses.begin(), m_pulses.end()};
}

std::vector<ReceivedRequest> Receiver::Requests() const
{
    const std::lock_guard lock(m_mutex);
    return {m_requests.begin(), m_requests.end()};
}

void Receiver::Forget()
{
    const std::lock_guard lock(m_mutex);
    m_pulses.clear();
    m_requests.clear();
}

void Receiver::Answer(const httplib::Request& request, httplib::Response& response, const httplib::ContentReader& read)
{
    ReceivedRequest received = Received(request);
    const bool whole = read([&](const char* bytes, std::size_t size) {
        received.body.append(bytes, size);
        return received.body.size() <= kBodyLimitBytes;
    });
    if (received.body.size() > kBodyLimitBytes) { // a chunked body; announced lengths were checked before
        response.status = 413;
    }
    if (!whole || !IsForPulses(request)) {
        Refuse(request, response);
        return;
    }
    Behaviour behaviour;
    {
        const std::lock_guard lock(m_mutex);
        behaviour = m_behaviour;
    }
    const bool admitted = IsAdmitted(behaviour, request);
    received.refusal = admitted ? JudgePulse(received.body) : "the proxy asks for credentials";
    const bool accepted = received.refusal.empty();
    response.status = accepted ? 200 : admitted ? 400 : 407;
    for (std::size_t index = 0; !admitted && index < behaviour.challenges.size(); ++index) {
        response.set_header("Proxy-Authenticate", behaviour.challenges[index]);
    }
    response.set_content(accepted ? R"({"accepted":true})" : received.refusal + '\n',
                         accepted ? "application/json" : "text/plain");
    OnRequest(std::move(received));
    InjectFault(behaviour, request.ssl, response);
}

void Receiver::AnswerPage(const httplib::Request& request, httplib::Response& response)
{
    requestSeen = true;
    const PageFilter filter{request.get_param_value("mode"), request.get_param_value("bit"),
                            request.get_param_value("host")};
    response.set_content(request.path == kFleetPath ? FleetPage(Pulses()) : PulsePage(Pulses(), filter),
                         "text/html; charset=utf-8");
    response.set_header("Content-Security-Policy", kPagePolicy);
    response.set_header("X-Content-Type-Options", "nosniff");
    response.set_header("Referrer-Policy", "no-referrer");
    response.set_header("Cache-Control", "no-store");
}

/// Refuses anything but a POST of a complete body to /1. Closes the connection, because part of the body may be unread.
void Receiver::Refuse(const httplib::Request& request, httplib::Response& response)
{
    ReceivedRequest received = Received(request);
    std::tie(response.status, received.refusal) = RefusalOf(request, response.status);
    response.set_content(received.refusal + '\n', "text/plain");
    response.set_header("Connection", "close");
    if (response.status == 405) {
        response.set_header("Allow", "POST");
    }
    if (request.ssl != nullptr) {
        ::SSL_set_shutdown(const_cast<SSL*>(request.ssl), SSL_RECEIVED_SHUTDOWN); // nothing more is read
    }
    OnRequest(std::move(received));
}

void Receiver::OnRequest(ReceivedRequest request)
{
    requestSeen = true;
    if (!request.refusal.empty()) {
        ReportRefusal(RefusalLine(request));
    }
    const std::lock_guard lock(m_mutex);
    Keep(m_requests, std::move(request));
}

/// The reason to refuse the pulse; empty if it is accepted.
std::string Receiver::JudgePulse(const std::string& body)
{
    DatedPulse pulse{std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()), {}};
    try {
        pulse.pulse = inspect::DecodePulse(body);
    } catch (const inspect::PulseError& error) {
        return error.what();
    }
    AddPulse(pulse);
    const std::lock_guard lock(m_callbackMutex);
    if (m_onPulse) {
        m_onPulse(pulse);
    }
    return {};
}

void Receiver::ReportRefusal(const std::string& line)
{
    const std::lock_guard lock(m_callbackMutex);
    if (m_onRefusal) {
        m_onRefusal(line);
    }
}

} // namespace vantor::receiver
