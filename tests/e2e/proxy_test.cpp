// The program behind proxies: a real squid, proxies that settings and scripts of the machine name.
#include "e2e/local_receiver.h"
#include "e2e/program.h"
#include "e2e/relay.h"
#include "inspect/inspect_command.h"

#include <gtest/gtest.h>
#include <httplib.h>

#include <fstream>
#include <iostream>
#include <regex>
#include <sstream>
#include <thread>

namespace vantor::e2e {
namespace {

using Lines = std::vector<std::string>;

const std::string kSquid = "127.0.0.1:31280"; // a squid that serves the machine has another port
const std::string kClient = WindowsTree("tests/proxied_client.exe");

Lines operator+(Lines left, const Lines& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// The distribution's squid. It drops root's rights, writes no file, and logs its requests.
class Squid : public Background {
public:
    explicit Squid(const std::string& settings = {}) : Background(Command(settings), "squid", "Accepting HTTP") {}

    /// What it has been asked since the last call, such as "CONNECT localhost:8000".
    Lines Asked()
    {
        const std::string output = Output().substr(m_read);
        m_read += output.size();
        const std::regex request("\n((CONNECT|POST http).*) HTTP/1");
        return Lines(std::sregex_token_iterator(output.begin(), output.end(), request, 1), {});
    }

private:
    static Lines Command(const std::string& settings)
    {
        const auto file = ScratchFolder() / "squid.conf";
        std::ofstream(file) << settings << "http_port " << kSquid << "\nhttp_access allow all\naccess_log none\n"
                            << "debug_options ALL,1 11,2\ncache_log /dev/null\nnetdb_filename none\npid_filename none\n"
                            << "pinger_enable off\ndns_nameservers 127.0.0.1\nshutdown_lifetime 0 seconds\n";
        // Not every machine lets it use /dev/shm or has an /etc/hosts. Where possible it gets its own of both, in a mount
        // namespace of its own. $0 is its configuration.
        const char kOwn[] = R"sh(
            if unshare --mount --propagation unchanged true; then
                exec unshare --mount --propagation unchanged sh -c 'mkdir -p /dev/shm
                    mount --make-private "$(findmnt -no TARGET -T /dev/shm | tail -n 1)" && mount -t tmpfs none /dev/shm &&
                        echo 127.0.0.1 localhost >/dev/shm/hosts && echo hosts_file /dev/shm/hosts >>"$0"
                    exec "$@"' "$0" "$@"
            fi
            exec "$@")sh";
        return {"sh", "-c", kOwn, file, "/usr/sbin/squid", "-N", "-d2", "-n", "vantor" + std::to_string(::getpid()),
                "-f", file};
    }

    std::size_t m_read = 0;
};

/// A server that takes every POST to /1, and has auto-config scripts.
struct WebServer {
    WebServer()
    {
        server.Post("/1", [](const httplib::Request&, httplib::Response&) {});
        server.Get("/script/(.*)", [](const httplib::Request& request, httplib::Response& response) {
            response.set_content("function FindProxyForURL() { return " + request.matches[1].str() + "; }", "text/js");
        });
    }
    ~WebServer() { server.stop(); }

    /// The URL of /1, of a script by what it answers as "script/'DIRECT'", or of something that is not there.
    std::string Url(const std::string& path) const { return "http://localhost:" + port + "/" + path; }

    httplib::Server server;
    const std::string port = std::to_string(server.bind_to_any_port("127.0.0.1"));
    std::jthread thread{[this] { server.listen_after_bind(); }};
};

/// Lines of a registry file with the machine's proxy settings or the user's.
std::string Settings(bool machine, char flags, const Lines& texts)
{
    std::string bytes = {machine ? '\x18' : '\x46', 0, 0, 0, 0, 0, 0, 0, flags, 0, 0, 0};
    for (const std::string& text : texts) {
        bytes += std::string{static_cast<char>(text.size()), 0, 0, 0} + text;
    }
    std::ostringstream lines;
    lines << "[HKEY_" << (machine ? "LOCAL_MACHINE" : "CURRENT_USER")
          << "\\Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings\\Connections]\n"
          << (machine ? "\"WinHttpSettings\"=hex:" : "\"DefaultConnectionSettings\"=hex:") << std::hex;
    for (const char byte : bytes + std::string(32, '\0')) {
        lines << static_cast<int>(byte) << ',';
    }
    return lines.str() + "0\n";
}

TEST(Proxies, EachKindWithEachKindOfCredentials)
{
    Squid squid;
    const WebServer web;
    LocalReceiver receiver;
    const std::regex telling(
        "(WinHTTP (?:status|error): .*|Using proxy fallback|Using .* token|Using named proxy|lpszProxy: .*)|"
        "UserProxyConfig: (WinHttp.*)");
    const auto run = [&](const char* proxy, const char* credentials, const std::string& outcome, const Lines& options,
                         const std::string& registry = {}) {
        SetRegistry(registry);
        receiver.Forget();
        const Outcome result = RunProgram(Lines{"/hcmode=periodic"} + options);
        const Lines asked = squid.Asked();
        std::string observed = receiver.Pulses().size() == 1 ? "arrives " : "does not arrive ";
        observed += asked.empty() ? "directly" : "by " + asked[0];
        std::string log;
        for (const std::string& line : result.log) {
            std::smatch found;
            log += '\n' + line;
            observed += std::regex_search(line, found, telling) ? ", " + found[1].str() + found[2].str() : "";
        }
        // What Wine 8 has for a broken script, Wine 10 has another code for.
        observed = std::regex_replace(observed, std::regex("ERROR_WINHTTP_INTERNAL_ERROR"), "Unknown error (14007)");
        std::cout << "real | " << proxy << " | " << credentials << " | " << observed << '\n';
        EXPECT_EQ(observed, outcome) << log;
        return result;
    };
    const std::string server = "/server=127.0.0.1", port = "/port=31280", user = "/username=bert";
    const std::string tunnel = "by CONNECT localhost:8000", refused = tunnel + ", WinHTTP status: 407";

    run("named", "not asked for", "arrives " + tunnel, {server, port});
    run("named, unknown", "not asked for",
        "does not arrive directly, WinHTTP error: ERROR_WINHTTP_NAME_NOT_RESOLVED 12007",
        {"/server=proxy.invalid", port});
    run("named, dead", "not asked for", "arrives directly, Using proxy fallback", {server, "/port=9"});
    receiver.SetBehaviour({.challenges = {"NTLM", "Basic realm=\"x\""}, .authorization = "Basic YmVydDpzZWNyZXQ="});
    run("named", "none", "does not arrive " + refused, {server, port});
    run("named", "wrong", "does not arrive " + refused, {server, port, user, "/password=wrong"});
    ExpectLog(run("named", "right", "arrives " + tunnel, {server, port, user, "/password=secret"}), "negotiation.log");
    receiver.SetBehaviour({});

    const std::string machine = Settings(true, 3, {"box:1", ""});
    const std::string nobody = "arrives directly, Using 'safer' token, ";
    run("none, nobody logged on", "", nobody + "lpszProxy: <null>", {});
    run("machine's, nobody logged on", "", nobody + "lpszProxy: box:1", {}, machine);
    const StandIn shell("desktop.exe");
    const std::string person = "arrives directly, Using shell process token, ";
    run("user's", "", person + "Using named proxy, lpszProxy: box:2", {},
        Settings(false, 3, {"box:2", "", ""}) + machine);
    const std::pair<const char*, const char*> kScripts[] = {
        {"script/'PROXY%20box:3'", "WinHttpgetProxyForUrl succeeded., lpszProxy: box:3"},
        {"script/'DIRECT'", "WinHttpgetProxyForUrl succeeded., lpszProxy: <null>"},
        {"nowhere", "WinHttpGetProxyForUrl failed: ERROR_WINHTTP_UNABLE_TO_DOWNLOAD_SCRIPT, lpszProxy: box:1"},
        {"script/(", "WinHttpGetProxyForUrl failed: Unknown error (14007), lpszProxy: box:1"},
    };
    for (const auto& [path, outcome] : kScripts) {
        run(path, "", person + outcome, {}, Settings(false, 5, {"", "", web.Url(path)}) + machine);
    }
}

TEST(Proxies, NobodyElseWritesALineOfTheLog)
{
    const std::string stamp = "26/11/21 08:41:36: ";
    std::string proxy = "box", reply = "reply";
    for (const char* lineEnd : {"\r\n", "\n", "\r"}) {
        proxy += lineEnd + stamp + "ERROR: x";
        reply += lineEnd + stamp + "TRACE: Entering GetConfig" + lineEnd + stamp + "ERROR: Error: x";
    }
    SetRegistry(Settings(true, 3, {proxy, ""}));
    LocalReceiver receiver;
    receiver.SetBehaviour({.body = reply});
    const auto log = ScratchFolder() / "run.log";
    RunProgram(WindowsTree("vantor.exe"), {"/hcmode=periodic", "/logfile=" + WindowsPath(log)}, log);
    std::ifstream file(log, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    const std::regex invented("(^|\r\n|\n|\r)" + stamp), quoted("(\r\n|\n|\r) " + stamp);
    EXPECT_EQ(std::distance(std::sregex_iterator(text.begin(), text.end(), invented), {}), 0);
    EXPECT_GE(std::distance(std::sregex_iterator(text.begin(), text.end(), quoted), {}), 9);
    std::ostringstream shown, problems;
    EXPECT_EQ(inspect::RunInspect({log}, file, shown, problems), 0) << problems.str();
    EXPECT_TRUE(shown.str().starts_with("run 1 of 1,")) << shown.str();
    EXPECT_NE(shown.str().find("pulse was delivered through the detected proxy box"), std::string::npos) << shown.str();
}

TEST(Proxies, ASquidThatAsksForCredentialsGetsThemAndWrongOnesOnce)
{
    Squid squid("auth_param basic program /bin/sed -u s/^bert.secret$/OK/;t;s/.*/ERR/\nauth_param digest realm x\n"
                "auth_param digest program /bin/false\nacl known proxy_auth REQUIRED\nhttp_access deny !known\n");
    const WebServer web;
    for (const auto& [password, status] : {std::pair("secret", "status 200"), std::pair("wrong", "status 407")}) {
        const Background client(UnderWine({kClient, web.port, kSquid, "", "bert", password}), password, status);
        EXPECT_EQ(squid.Asked(), Lines(3, "POST " + web.Url("1"))); // Wine asks without and is asked itself
    }
}

TEST(Proxies, ALogonOnTheNextConnectionGoesToNoOtherCertificate)
{
    const Squid squid;
    const Lines challenge = {"Basic realm=\"x\""};
    LocalReceiver first("server-a", 0);
    first.SetBehaviour(
        {.framing = receiver::Framing::connectionEnd, .challenges = challenge}); // which ends the connection
    const std::tuple<const char*, Codes, std::size_t, std::size_t> kCases[] = {
        {"server-b", {}, 2, 1},                                            // Wine asks without and is asked itself
        {"server-outsider", {"ERROR_WINHTTP_SECURE_FAILURE 12175"}, 1, 0}, // the pins are asked once a request is sent
        {"server-expired", kNoTls, 0, 0},
    };
    SetRegistry();
    for (const auto& [certificate, codes, requests, pulses] : kCases) {
        LocalReceiver second(certificate, 0);
        second.SetBehaviour({.challenges = challenge}); // a pulse there means that credentials came with it
        const Lines options = {"/server=127.0.0.1", "/port=31280", "/username=bert", "/password=secret"};
        Relay relay(8000, {first.Port(), second.Port()});
        const Outcome outcome = RunProgram(Lines{"/hcmode=periodic"} + options);
        relay.Stop();
        EXPECT_EQ(relay.Connections(), 2u) << certificate;
        EXPECT_EQ(second.Requests().size(), requests) << certificate;
        EXPECT_EQ(second.Pulses().size(), pulses) << certificate;
        const std::string failure = "ERROR: RESTTelemetry::Send: Send telemetry failed. WinHTTP error: ";
        EXPECT_EQ(outcome.Logged(failure, codes), pulses == 0) << certificate;
    }
}

TEST(Proxies, ATunnelThatIsRefusedEndsTheRunWithItsCause)
{
    Squid squid("http_access deny all\n");
    SetRegistry();
    const Outcome outcome = RunProgram({"/hcmode=periodic", "/server=127.0.0.1", "/port=31280"});
    EXPECT_EQ(squid.Asked().size(), 1u);
    // Windows hands out the proxy's status; Wine takes its answer for the start of TLS.
    const std::string failure = "ERROR: RESTTelemetry::Send: Send telemetry failed. WinHTTP ";
    const bool isExplained = outcome.Logged(failure + "status: 403") || outcome.Logged(failure + "error: ", kNoTls);
    EXPECT_TRUE(isExplained);
    EXPECT_FALSE(
        outcome.Logged("ERROR: HttpConnection::SendRequest: HttpConnection::SendRequest invalid server certificate."));
}

TEST(Proxies, AnInspectingProxyIsNamedAndNothingOfItsAnswerIsRead)
{
    Squid squid;
    LocalReceiver inspector("server-outsider"); // in the service's place: its authority is trusted, but not pinned
    SetRegistry();
    const Outcome outcome = RunProgram({"/hcmode=periodic", "/server=127.0.0.1", "/port=31280"});
    EXPECT_EQ(squid.Asked(), Lines{"CONNECT localhost:8000"});
    EXPECT_EQ(inspector.Requests().size(), 1u); // Windows shows the certificate once the request is sent
    EXPECT_TRUE(
        outcome.Logged("ERROR: HttpConnection::SendRequest: The server's certificate chain is trusted, but none of "
                       "the pinned issuers signed the certificate: an inspecting proxy between this host and the "
                       "service is the likely cause."));
    EXPECT_TRUE(outcome.Logged(
        "ERROR: RESTTelemetry::Send: Send telemetry failed. WinHTTP error: ERROR_WINHTTP_SECURE_FAILURE 12175"));
    for (const std::string& line : outcome.log) {
        EXPECT_FALSE(line.starts_with("TRACE: HttpRequest::Read") ||
                     line.find("HttpRequest::AcceptResponse") != line.npos)
            << line;
    }
}

} // namespace
} // namespace vantor::e2e
