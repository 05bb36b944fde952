#include "receiver/answer.h"

#include <poll.h>

#include <algorithm>

namespace vantor::receiver {
namespace {

constexpr std::size_t kPieceBytes = 16'384;

/// Waits, but not on when the connection is closed.
void Pause(int socket, std::chrono::milliseconds duration)
{
    pollfd wait{socket, POLLRDHUP, 0};
    ::poll(&wait, 1, static_cast<int>(duration.count()));
}

/// Cuts the connection, without TLS's own farewell. What follows fails.
void Cut(int socket)
{
    ::shutdown(socket, SHUT_RDWR);
}

bool Write(std::string_view content, httplib::DataSink& sink, std::size_t pieceBytes = kPieceBytes)
{
    bool written = true;
    for (; written && !content.empty(); content.remove_prefix(std::min(pieceBytes, content.size()))) {
        written = sink.write(content.data(), std::min(pieceBytes, content.size()));
    }
    return written;
}

bool Trickle(const Behaviour& behaviour, int socket, std::string_view content, httplib::DataSink& sink)
{
    for (const char& byte : content) {
        Pause(socket, behaviour.pieceDelay);
        if (!sink.is_writable() || !sink.write(&byte, 1)) {
            return false;
        }
    }
    return true;
}

/// Writes the whole body, with the pause or up to the cut that is asked for. False ends the connection.
bool WriteUnevenly(const Behaviour& behaviour, int socket, std::string_view content, httplib::DataSink& sink)
{
    if (behaviour.cut == CutPoint::inBody || behaviour.cut == CutPoint::afterHeaders) {
        Write(content.substr(0, behaviour.cut == CutPoint::inBody ? content.size() / 2 : 0), sink);
        Cut(socket);
        return false;
    }
    while (behaviour.endless && Write(content, sink)) {
    }
    if (behaviour.pieceDelay.count() != 0) {
        return Trickle(behaviour, socket, content, sink);
    }
    const std::size_t stall = std::min(behaviour.stallAfter.value_or(content.size()), content.size());
    if (!Write(content.substr(0, stall), sink)) {
        return false;
    }
    if (behaviour.stallAfter) {
        Pause(socket, behaviour.stallFor);
    }
    return Write(content.substr(stall), sink);
}

} // namespace

void Misbehave(const Behaviour& behaviour, const SSL* connection, httplib::Response& response)
{
    const int socket = ::SSL_get_fd(connection);
    Pause(socket, behaviour.delay);
    if (!behaviour.bytesBeforeCut.empty()) {
        ::SSL_write(const_cast<SSL*>(connection), behaviour.bytesBeforeCut.data(),
                    static_cast<int>(behaviour.bytesBeforeCut.size()));
    }
    if (behaviour.cut == CutPoint::beforeAnswer || !behaviour.bytesBeforeCut.empty()) {
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
    } else if (response.status == 204 || response.status == 304) { // these have none
        response.body.clear();
    }
    const bool uneven = behaviour.stallAfter || behaviour.cut != CutPoint::never || behaviour.pieceDelay.count() != 0;
    if (!behaviour.chunked && !behaviour.unframed && (!uneven || response.body.empty())) {
        return;
    }
    const std::string content = std::exchange(response.body, {});
    const std::string type = response.get_header_value("Content-Type");
    if (behaviour.unframed) {
        response.set_header("Connection", "close");
        response.set_content_provider(type, [=](std::size_t, httplib::DataSink& sink) {
            const bool whole = WriteUnevenly(behaviour, socket, content, sink);
            sink.done();
            return whole;
        });
    } else if (behaviour.chunked) {
        response.set_chunked_content_provider(type, [=](std::size_t, httplib::DataSink& sink) {
            const bool whole = WriteUnevenly(behaviour, socket, content, sink);
            sink.done();
            return whole;
        });
    } else {
        response.set_content_provider(content.size(), type, [=](std::size_t, std::size_t, httplib::DataSink& sink) {
            return WriteUnevenly(behaviour, socket, content, sink);
        });
    }
}

} // namespace vantor::receiver
