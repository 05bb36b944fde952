#include "receiver/receiver.h"

#include "inspect/sample_pulse.h"

#include <gmock/gmock.h>
#include <httplib.h>

#include <future>

namespace vantor::receiver {
namespace {

using namespace std::chrono_literals;
using inspect::SampleBody;

class ReceiverTest : public testing::Test {
protected:
    ReceiverTest() { m_receiver.Start(); }

    ~ReceiverTest() override
    {
        for (const int stranger : m_strangers) {
            ::close(stranger);
        }
    }

    httplib::Response Send(const std::string& method, const std::string& path, const std::string& body,
                           const httplib::Headers& headers = {}) const
    {
        httplib::SSLClient client("localhost", m_receiver.Port());
        client.set_ca_cert_path(VANTOR_PKI_DIRECTORY "/issuers.pem");
        client.set_read_timeout(m_timeout);
        std::string received;
        httplib::Request request;
        request.method = method;
        request.path = path;
        request.body = body;
        request.headers = headers;
        request.content_receiver = [&](const char* bytes, std::size_t size, std::uint64_t, std::uint64_t) {
            received.append(bytes, size);
            return true;
        };
        const auto result = client.send(request);
        httplib::Response response = result ? *result : httplib::Response(); // without one, or with half: status -1
        response.body = received;
        return response;
    }

    /// Connects, sends these bytes and then nothing more.
    void AddStranger(std::string_view bytes)
    {
        const int stranger = m_strangers.emplace_back(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        const sockaddr_in address{AF_INET, htons(m_receiver.Port()), {htonl(INADDR_LOOPBACK)}, {}};
        ASSERT_EQ(::connect(stranger, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        ASSERT_EQ(::send(stranger, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
    }

    std::chrono::milliseconds m_timeout = 20s;
    std::vector<int> m_strangers;
    Receiver m_receiver{{VANTOR_PKI_DIRECTORY "/server-a.pem", VANTOR_PKI_DIRECTORY "/server-a.key", 0}};
};

TEST_F(ReceiverTest, JudgesAndRecordsRequests)
{
    const struct {
        const char* method;
        const char* path;
        std::string body;
        int status;
        std::string refusal;
        httplib::Headers headers = {{"a", "2"}, {"A", "1"}};
    } kCases[] = {
        {"POST", "/1", SampleBody(), 200, ""},
        {"POST", "https://localhost:8000/1", SampleBody(), 200, ""},
        {"POST", "/1", std::string("{\0}", 3), 400, "not valid JSON at byte 2"},
        {"POST", "/2", SampleBody(), 404, "there is nothing at this path"},
        {"POST", "/1?", SampleBody(), 404, "there is nothing at this path"},
        {"GET", "/1", "", 405, "pulses are posted"},
        {"PUT", "/1", SampleBody(), 405, "pulses are posted"},
        {"POST", "/1", std::string(65'537, 'x'), 413, "the body is larger than 65536 bytes"},
        {"POST", "/1", "", 415, "the body is compressed or multipart", {{"Content-Encoding", "gzip"}}},
        {"POST", "/1", "", 415, "the body is compressed or multipart", {{"Content-Type", "multipart/form-data"}}},
    };
    for (const auto& [method, path, body, status, refusal, headers] : kCases) {
        const httplib::Response answer = Send(method, path, body, headers);
        EXPECT_EQ(answer.status, status) << method << path;
        EXPECT_EQ(answer.body, refusal.empty() ? R"({"accepted":true})" : refusal + '\n');
        const ReceivedRequest received = m_receiver.Requests().back();
        EXPECT_EQ(received.method + received.target, std::string(method) + path);
        EXPECT_EQ(received.body, status <= 400 ? body : "");
        EXPECT_EQ(received.refusal, refusal);
        EXPECT_THAT(received.headers, testing::IsSupersetOf(headers));
        EXPECT_THAT(received.headers, testing::Contains(testing::Key("Host")));
    }
    EXPECT_EQ(m_receiver.Requests().size(), std::size(kCases));
    EXPECT_EQ(m_receiver.ConnectionCount(), std::size(kCases));
    EXPECT_EQ(m_receiver.Pulses().size(), 2U);
    EXPECT_NE(Send("GET", "/?mode=postdatupdate", "").body.find("2 of 2 pulses"), std::string::npos);
}

TEST_F(ReceiverTest, KeepsServingBesideStrangersAndStops)
{
    AddStranger(std::string(5000, '\x9C'));
    AddStranger("POST /1 HTTP/1.1\r\nContent-Length: 5\r\n\r\n12345");
    const std::string_view halfHello("\x16\x03\x01\x02\x00\x01\x00\x01\xFC\x03\x03", 11);
    while (m_strangers.size() < 100) {
        AddStranger(m_strangers.size() % 2 == 0 ? halfHello : "");
    }
    m_timeout = 4s; // a silent handshake is given five
    EXPECT_EQ(Send("POST", "/1", SampleBody()).status, 200);
    m_timeout = 20s;

    m_receiver.SetBehaviour({.fault = StalledBody()});
    auto stalled = std::async(std::launch::async, [this] { return Send("POST", "/1", SampleBody()).status; });
    while (m_receiver.Pulses().size() < 2 && stalled.wait_for(5ms) != std::future_status::ready) {
    }
    m_receiver.Stop();
    EXPECT_EQ(stalled.get(), -1);
    m_receiver.SetBehaviour({});
    m_receiver.Start();
    EXPECT_EQ(Send("POST", "/1", SampleBody()).status, 200);
}

TEST_F(ReceiverTest, SaysWhyItCannotStart)
{
    const std::string pki = VANTOR_PKI_DIRECTORY;
    const std::pair<ReceiverConfig, std::string> kCases[] = {
        {{pki + "/server-a.pem", pki + "/server-a.key", m_receiver.Port()}, "is in use by another program"},
        {{pki + "/nowhere.pem", pki + "/server-a.key", 0},
         "/nowhere.pem\" with the key \"" + pki + "/server-a.key\": No such file"},
        {{pki + "/server-a.pem", pki + "/server-b.key", 0}, "/server-b.key\": key values mismatch"},
    };
    for (const auto& [config, reason] : kCases) {
        EXPECT_THAT([&given = config] { Receiver(given).Start(); },
                    testing::ThrowsMessage<ReceiverError>(testing::HasSubstr(reason)));
    }
}

} // namespace
} // namespace vantor::receiver
