#include "service/reputation_service.h"

#include "service/http_exchange.h"
#include "service/loopback_server.h"
#include "service/printable_text.h"
#include "service/tls_stream.h"

#include <cerrno>
#include <csignal>
#include <deque>
#include <mutex>
#include <system_error>

namespace vantor::service {
namespace {

constexpr std::size_t kShownLineBytes = 60;

template <typename Item>
void Keep(std::deque<Item>& items, Item item)
{
    items.push_back(std::move(item));
    if (items.size() > ReputationService::kMostKept) {
        items.pop_front();
    }
}

std::string RefusalLine(const ReceivedRequest& request)
{
    const std::string line = request.method + (request.method.empty() ? "" : " ") + request.target;
    return "refused " + PrintableText(line, kShownLineBytes) + (line.empty() ? "" : ": ") + request.refusal;
}

} // namespace

class ReputationService::Impl final : private RequestJudge {
public:
    explicit Impl(ServiceConfig config) : m_config(std::move(config)), m_server([this](int socket) { Talk(socket); }) {}

    void Start()
    {
        // A peer that has gone is an error of one write, not the end of the process.
        std::signal(SIGPIPE, SIG_IGN);
        try {
            m_context = MakeServerContext(m_config.certificateFile, m_config.keyFile);
            m_server.Start(m_config.port);
        } catch (const std::system_error& error) {
            throw ServiceError(error.code().value() == EADDRINUSE
                                   ? "port " + std::to_string(m_config.port) + " is in use by another program"
                                   : "cannot listen on port " + std::to_string(m_config.port) + ": " + error.what());
        } catch (const std::runtime_error& error) {
            throw ServiceError(error.what());
        }
    }

    void SetCallbacks(PulseCallback onPulse, RefusalCallback onRefusal)
    {
        const std::lock_guard lock(m_callbackMutex);
        m_onPulse = std::move(onPulse);
        m_onRefusal = std::move(onRefusal);
    }

    void SetBehaviour(const Behaviour& behaviour)
    {
        const std::lock_guard lock(m_mutex);
        m_behaviour = behaviour;
    }

    std::vector<ReceivedPulse> Pulses() const
    {
        const std::lock_guard lock(m_mutex);
        return {m_pulses.begin(), m_pulses.end()};
    }

    std::vector<ReceivedRequest> Requests() const
    {
        const std::lock_guard lock(m_mutex);
        return {m_requests.begin(), m_requests.end()};
    }

    void Forget()
    {
        const std::lock_guard lock(m_mutex);
        m_pulses.clear();
        m_requests.clear();
    }

    LoopbackServer& Server() { return m_server; }

private:
    void Talk(int socket)
    {
        TlsStream stream(socket, m_context.get());
        const std::string failure = stream.Handshake();
        if (!failure.empty()) {
            ReportRefusal("a connection ended in the TLS handshake: " + failure);
            return;
        }
        HttpExchange(stream, *this).Run();
        stream.Close();
    }

    void OnRequest(const ReceivedRequest& request) override
    {
        {
            const std::lock_guard lock(m_mutex);
            Keep(m_requests, request);
        }
        if (!request.refusal.empty()) {
            ReportRefusal(RefusalLine(request));
        }
    }

    std::string JudgePulse(const std::string& body) override
    {
        ReceivedPulse pulse{std::chrono::system_clock::now(), {}};
        try {
            pulse.pulse = DecodePulse(body);
        } catch (const PulseError& error) {
            return error.what();
        }
        {
            const std::lock_guard lock(m_mutex);
            Keep(m_pulses, pulse);
        }
        const std::lock_guard lock(m_callbackMutex);
        if (m_onPulse) {
            m_onPulse(pulse);
        }
        return {};
    }

    Behaviour CurrentBehaviour() override
    {
        const std::lock_guard lock(m_mutex);
        return m_behaviour;
    }

    void ReportRefusal(const std::string& line)
    {
        const std::lock_guard lock(m_callbackMutex);
        if (m_onRefusal) {
            m_onRefusal(line);
        }
    }

    const ServiceConfig m_config;
    SslContext m_context;
    std::mutex m_callbackMutex; ///< guards the callbacks, and lets one run at a time
    PulseCallback m_onPulse;
    RefusalCallback m_onRefusal;
    mutable std::mutex m_mutex; ///< guards what follows
    Behaviour m_behaviour;
    std::deque<ReceivedPulse> m_pulses;
    std::deque<ReceivedRequest> m_requests;
    LoopbackServer m_server; ///< last: its threads use all of the above
};

ReputationService::ReputationService(ServiceConfig config) : m_impl(std::make_unique<Impl>(std::move(config))) {}

ReputationService::~ReputationService() = default;

void ReputationService::SetCallbacks(PulseCallback onPulse, RefusalCallback onRefusal)
{
    m_impl->SetCallbacks(std::move(onPulse), std::move(onRefusal));
}

void ReputationService::Start()
{
    m_impl->Start();
}

void ReputationService::Stop()
{
    m_impl->Server().Stop();
}

std::uint16_t ReputationService::Port() const
{
    return m_impl->Server().Port();
}

void ReputationService::SetBehaviour(const Behaviour& behaviour)
{
    m_impl->SetBehaviour(behaviour);
}

std::vector<ReceivedPulse> ReputationService::Pulses() const
{
    return m_impl->Pulses();
}

std::vector<ReceivedRequest> ReputationService::Requests() const
{
    return m_impl->Requests();
}

void ReputationService::Forget()
{
    m_impl->Forget();
}

std::size_t ReputationService::ConnectionCount() const
{
    return m_impl->Server().ConnectionCount();
}

} // namespace vantor::service
