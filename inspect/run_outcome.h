// What became of a run, in one sentence.
#pragma once

#include "inspect/run.h"

#include <cstddef>
#include <string>

namespace vantor::inspect {

/// What the outcome depends on, gathered from a run's messages.
struct RunFacts {
    std::string fatalError;                 ///< the error that ended the run
    int exitCode = 1;                       ///< with that error
    std::string sendFailure;                ///< what the log gives as the reason for a failed sending
    std::string setUpFailure;               ///< why the connection could not be set up
    std::string proxy;                      ///< the last one that was detected
    std::string innermostScope;             ///< the operation that was under way at the end of the log
    std::string lastStep = "its beginning"; ///< the last outermost operation or note
    std::size_t warningCount = 0;
    std::size_t errorCount = 0;
    std::size_t logonWarningCount = 0; ///< of those, the steps of a logon at a proxy, which a good logon leaves as well
    std::size_t logonErrorCount = 0;
    bool hasMode = false;         ///< asked for by an option, or in the record
    bool hasNamedProxy = false;   ///< given on the command line
    bool fellBack = false;        ///< from the proxy to a direct connection
    bool isInspected = false;     ///< somebody else's issuer signed the server's certificate
    bool isTunnelRefused = false; ///< the proxy answered instead of building the tunnel
    bool reachedSending = false;  ///< the report was handed over
    bool leftSending = false;
};

/// Sets the run's delivery and outcome.
void ConcludeRun(Run& run, const RunFacts& facts);

} // namespace vantor::inspect
