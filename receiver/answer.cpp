#include "receiver/answer.h"

#include <poll.h>

#include <algorithm>
#include <utility>
#include <variant>

namespace vantor::receiver {
namespace {

constexpr std::size_t kPieceBytes = 16'384;

/// Waits until the time is up or the connection is closed.
void Pause(int socket, std::chrono::milliseconds duration)
{
    pollfd wait{socket, POLLRDHUP, 0};
    ::poll(&wait, 1, static_cast<int>(duration.count()));
}

/// Closes the connection without the closing alert of TLS. Further writes fail.
void Cut(int socket)
{
    ::shutdown(socket, SHUT_RDWR);
}

bool Write(std::string_view content, httplib::DataSink& sink)
{
    bool written = true;
    for (; written && !content.empty(); content.remove_prefix(std::min(kPieceBytes, content.size()))) {
        written = sink.write(content.data(), std::min(kPieceBytes, content.size()));
    }
    return written;
}

/// Writes the body of an answer with the given fault. Returning false ends the connection.
struct BodyWriter {
    int socket;
    std::string_view content;
    httplib::DataSink& sink;

    bool operator()(const auto& /*no fault in the body*/) const { return Write(content, sink); }

    bool operator()(const CutInBody&) const
    {
        Write(content.substr(0, content.size() / 2), sink);
        Cut(socket);
        return false;
    }

    bool operator()(const EndlessBody&) const
    {
        while (Write(content, sink)) {
        }
        return false;
    }

    bool operator()(const SlowBody& slow) const
    {
        return std::ranges::all_of(content, [&](const char& byte) {
            Pause(socket, slow.bytePause);
            return sink.is_writable() && sink.write(&byte, 1);
        });
    }

    bool operator()(const StalledBody& stalled) const
    {
        const std::size_t first = std::min(stalled.afterBytes, content.size());
        if (!Write(content.substr(0, first), sink)) {
            return false;
        }
        Pause(socket, stalled.pause);
        return Write(content.substr(first), sink);
    }
};

/// Makes the response send its body with the behaviour's framing and fault.
void SendBody(const Behaviour& behaviour, int socket, httplib::Response& response)
{
    const std::string content = std::exchange(response.body, {});
    const std::string type = response.get_header_value("Content-Type");
    const auto write = [=](httplib::DataSink& sink) {
        return std::visit(BodyWriter{socket, content, sink}, behaviour.fault);
    };
    const auto writeToEnd = [=](std::size_t, httplib::DataSink& sink) {
        const bool whole = write(sink);
        sink.done();
        return whole;
    };
    switch (behaviour.framing) {
    case Framing::contentLength:
        response.set_content_provider(content.size(), type,
                                      [=](std::size_t, std::size_t, httplib::DataSink& sink) { return write(sink); });
        break;
    case Framing::chunked:
        response.set_chunked_content_provider(type, writeToEnd);
        break;
    case Framing::connectionEnd:
        response.set_header("Connection", "close");
        response.set_content_provider(type, writeToEnd);
        break;
    }
}

} // namespace

void InjectFault(const Behaviour& behaviour, const SSL* connection, httplib::Response& response)
{
    const int socket = ::SSL_get_fd(connection);
    Pause(socket, behaviour.delay);
    if (const auto* const cut = std::get_if<CutBeforeAnswer>(&behaviour.fault)) {
        if (!cut->bytes.empty()) {
            ::SSL_write(const_cast<SSL*>(connection), cut->bytes.data(), static_cast<int>(cut->bytes.size()));
        }
        Cut(socket);
        return;
    }
    response.status = behaviour.status.value_or(response.status);
    for (const auto& [name, value] : behaviour.headers) {
        response.set_header(name, value);
    }
    if (behaviour.bodyBytes) {
        response.body.assign(*behaviour.bodyBytes, 'x');
    } else if (!behaviour.body.empty()) {
        response.body = behaviour.body;
    } else if (response.status == 204 || response.status == 304) { // these have no body
        response.body.clear();
    }
    const bool isPlain = behaviour.framing == Framing::contentLength &&
                         (response.body.empty() || std::holds_alternative<std::monostate>(behaviour.fault));
    if (!isPlain) {
        SendBody(behaviour, socket, response);
    }
}

} // namespace vantor::receiver
