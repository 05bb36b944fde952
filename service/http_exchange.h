// The HTTP spoken on one connection: what was asked, and the answer, well-behaved or not.
#pragma once

#include "service/behaviour.h"
#include "service/received_request.h"
#include "service/tls_stream.h"

#include <httplib.h>

#include <string>

namespace vantor::service {

/// Who judges what an exchange reads.
class RequestJudge {
public:
    /// Hears of every request before it is answered. A refused one carries its reason.
    virtual void OnRequest(const ReceivedRequest& request) = 0;

    /// Judges a posted pulse: the reason to refuse it, empty when it is accepted.
    virtual std::string JudgePulse(const std::string& body) = 0;

    /// How to answer the pulse that has just been judged.
    virtual Behaviour CurrentBehaviour() = 0;

protected:
    ~RequestJudge() = default;
};

/// Serves the requests of one connection. cpp-httplib reads and writes the messages; listening, threads and TLS are
/// not its business here.
class HttpExchange : private httplib::Server {
public:
    /// A larger body is refused with 413.
    static constexpr std::size_t kBodyLimitBytes = 65'536;

    HttpExchange(TlsStream& stream, RequestJudge& judge);

    /// Returns when the peer closed or was idle for long, or when an answer ended the connection.
    void Run();

private:
    void Prepare(httplib::Request& request);
    HandlerResponse RefuseEarly(const httplib::Request& request, httplib::Response& response);
    void AnswerPulse(const httplib::Request& request, httplib::Response& response);
    void Misbehave(const Behaviour& behaviour, std::string content, httplib::Response& response);
    bool WriteUnevenly(const Behaviour& behaviour, const std::string& content, httplib::DataSink& sink);
    void Refuse(const httplib::Request& request, httplib::Response& response, int status, const std::string& reason);
    void RefuseUnread(const httplib::Request& request, httplib::Response& response);
    ReceivedRequest Received(const httplib::Request& request) const;

    TlsStream& m_stream;
    RequestJudge& m_judge;
    std::string m_head;      ///< of the current request, as it came
    bool m_reported = false; ///< the judge has heard of the current request
    bool m_last = false;     ///< the connection ends with the current request
};

} // namespace vantor::service
