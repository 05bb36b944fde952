#include "service/reputation_service.h"

#include "sample_pulse.h"
#include "service/descriptor.h"
#include "service/loopback_server.h"

#include <gtest/gtest.h>
#include <httplib.h>

#include <future>

namespace vantor::service {
namespace {

using namespace std::chrono_literals;

bool HasIpv6()
{
    const Descriptor socket(::socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_addr = in6addr_loopback;
    return ::bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

class ReputationServiceTest : public testing::Test {
protected:
    ReputationServiceTest() { m_service.Start(); }

    struct Answer {
        int status = 0; ///< 0: none, or a broken one
        std::string body;
        httplib::Headers headers;
    };

    Answer Send(const std::string& method, const std::string& path, const std::string& body,
                const char* address = "127.0.0.1") const
    {
        httplib::SSLClient client("localhost", m_service.Port());
        client.set_hostname_addr_map({{"localhost", address}});
        client.set_ca_cert_path(VANTOR_PKI_DIRECTORY "/issuers.pem");
        client.set_read_timeout(m_patience);
        Answer answer;
        httplib::Request request;
        request.method = method;
        request.path = path;
        request.body = body;
        request.headers = {{"Content-Type", "multipart/form-data; boundary=b"}, {"Content-Encoding", "gzip"}};
        request.content_receiver = [&](const char* bytes, std::size_t size, std::uint64_t, std::uint64_t) {
            answer.body.append(bytes, size);
            return true;
        };
        if (const auto result = client.send(request)) {
            answer.status = result->status;
            answer.headers = result->headers;
        }
        return answer;
    }

    Descriptor Connect(std::string_view bytes) const
    {
        Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        const sockaddr_in address{AF_INET, htons(m_service.Port()), {htonl(INADDR_LOOPBACK)}, {}};
        EXPECT_EQ(::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(::send(socket.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
        return socket;
    }

    template <typename Action>
    static void ExpectPrompt(Action action)
    {
        const auto begin = std::chrono::steady_clock::now();
        action();
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 4s); // a silent handshake is given five
    }

    std::chrono::milliseconds m_patience = 20s;
    ReputationService m_service{{VANTOR_PKI_DIRECTORY "/server-a.pem", VANTOR_PKI_DIRECTORY "/server-a.key", 0}};
};

TEST_F(ReputationServiceTest, JudgesAndRecordsRequests)
{
    const struct {
        const char* method;
        const char* path;
        std::string body;
        int status;
        std::string refusal;
    } kCases[] = {
        {"POST", "/1", SampleBody(), 200, ""},
        {"POST", "/1", std::string("{\0}", 3), 400, "not valid JSON at byte 2"},
        {"POST", "/2", SampleBody(), 404, "there is nothing at this path"},
        {"GET", "/1", "", 405, "pulses are posted"},
        {"POST", "/1", std::string(65'537, 'x'), 413, "the body is larger than 65536 bytes"},
    };
    for (const auto& [method, path, body, status, refusal] : kCases) {
        const Answer answer = Send(method, path, body);
        EXPECT_EQ(answer.status, status);
        EXPECT_EQ(answer.body, refusal.empty() ? R"({"accepted":true})" : refusal + '\n');
        const ReceivedRequest received = m_service.Requests().back();
        EXPECT_EQ(received.method + received.target, std::string(method) + path);
        EXPECT_EQ(received.body, status <= 400 ? body : "");
        EXPECT_EQ(received.refusal, refusal);
        EXPECT_NE(received.head.find("\r\nContent-Encoding: gzip\r\n"), std::string::npos);
    }
    EXPECT_EQ(m_service.Requests().size(), std::size(kCases));
    EXPECT_EQ(m_service.ConnectionCount(), std::size(kCases));
    EXPECT_EQ(m_service.Pulses().size(), 1U);
}

TEST_F(ReputationServiceTest, MisbehavesAsTold)
{
    constexpr std::size_t kMiB = 1'048'576;
    const struct {
        Behaviour behaviour;
        int status;
        std::size_t bodyBytes;
        std::chrono::milliseconds patience = 20s;
    } kCases[] = {
        {{.status = 500}, 500, 17},
        {{.status = 204}, 204, 0},
        {{.status = 302, .headers = {{"Location", "/elsewhere"}}}, 302, 17},
        {{.delay = 20s}, 0, 0, 1500ms},
        {{.bodyBytes = kMiB}, 200, kMiB},
        {{.bodyBytes = kMiB, .chunked = true}, 200, kMiB},
        {{.stallAfter = 5, .stallFor = 300ms}, 200, 17},
        {{.stallAfter = 5}, 0, 5, 1500ms},
        {{.chunked = true, .stallAfter = 5}, 0, 5, 1500ms},
        {{.cut = CutPoint::beforeAnswer}, 0, 0},
        {{.bodyBytes = kMiB, .cut = CutPoint::inBody}, 0, kMiB / 2},
        {{.bodyBytes = kMiB, .chunked = true, .cut = CutPoint::inBody}, 0, kMiB / 2},
    };
    for (std::size_t index = 0; index < std::size(kCases); ++index) {
        m_service.SetBehaviour(kCases[index].behaviour);
        m_patience = kCases[index].patience;
        const Answer answer = Send("POST", "/1", SampleBody());
        EXPECT_EQ(answer.status, kCases[index].status) << index;
        EXPECT_EQ(answer.body.size(), kCases[index].bodyBytes) << index;
        EXPECT_EQ(answer.headers.count("Location"), kCases[index].behaviour.headers.size()) << index;
        EXPECT_EQ(m_service.Pulses().size(), index + 1);
    }
}

TEST_F(ReputationServiceTest, KeepsServingBesideGarbageAndStopsAtOnce)
{
    std::vector<Descriptor> strangers;
    strangers.push_back(Connect(std::string(5000, '\x9C')));
    strangers.push_back(Connect("POST /1 HTTP/1.1\r\nContent-Length: 5\r\n\r\n12345"));
    for (std::size_t count = 0; count < 2 * LoopbackServer::kMostConnections; ++count) {
        strangers.push_back(
            Connect(std::string_view("\x16\x03\x01\x02\x00\x01\x00\x01\xFC\x03\x03", 11))); // half a hello
    }
    ExpectPrompt([&] { EXPECT_EQ(Send("POST", "/1", SampleBody(), "127.0.0.1").status, 200); });
    EXPECT_EQ(Send("POST", "/1", SampleBody(), HasIpv6() ? "::1" : "127.0.0.1").status, 200);

    m_service.SetBehaviour({.stallAfter = 0});
    auto stalled = std::async(std::launch::async, [this] { return Send("POST", "/1", SampleBody()).status; });
    while (m_service.Pulses().size() < 3 && stalled.wait_for(5ms) != std::future_status::ready) {
    }
    ExpectPrompt([&] { m_service.Stop(); });
    EXPECT_EQ(stalled.get(), 0);
}

TEST_F(ReputationServiceTest, SaysWhyItCannotStart)
{
    const std::string pki = VANTOR_PKI_DIRECTORY;
    const std::pair<ServiceConfig, std::string> kCases[] = {
        {{pki + "/server-a.pem", pki + "/server-a.key", m_service.Port()}, "is in use by another program"},
        {{pki + "/nowhere.pem", pki + "/server-a.key", 0}, "/nowhere.pem\": No such file"},
        {{pki + "/server-a.pem", pki + "/server-b.key", 0}, "/server-b.key\": key values mismatch"},
    };
    for (const auto& [config, reason] : kCases) {
        try {
            ReputationService(config).Start();
            ADD_FAILURE() << "started, instead of: " << reason;
        } catch (const ServiceError& error) {
            EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << error.what();
        }
    }
}

} // namespace
} // namespace vantor::service
