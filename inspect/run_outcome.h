// What became of a run, in one sentence.
#pragma once

#include "inspect/run.h"

#include <cstddef>
#include <string>

namespace vantor::inspect {

/// The facts that decide the outcome, gathered from a run's messages.
struct RunFacts {
    std::string fatalError;                 ///< the error that ended the run
    int exitCode = 1;                       ///< for that error
    std::string sendFailure;                ///< the logged reason why sending failed
    std::string setUpFailure;               ///< why the connection could not be set up
    std::string proxy;                      ///< the last one detected
    std::string innermostScope;             ///< the operation in progress at the end of the log
    std::string lastStep = "its beginning"; ///< the last outermost operation or note
    std::size_t warningCount = 0;
    std::size_t errorCount = 0;
    std::size_t logonWarningCount = 0; ///< of those, steps of a proxy logon, which a successful logon logs as well
    std::size_t logonErrorCount = 0;
    bool hasMode = false;         ///< set by an option or in the record
    bool hasNamedProxy = false;   ///< given on the command line
    bool fellBack = false;        ///< from the proxy to a direct connection
    bool isInspected = false;     ///< the server's certificate is trusted but not from a pinned issuer
    bool isTunnelRefused = false; ///< the proxy answered instead of building the tunnel
    bool reachedSending = false;  ///< the report was passed to the telemetry client
    bool leftSending = false;
};

/// Sets the run's delivery and outcome.
void ConcludeRun(Run& run, const RunFacts& facts);

} // namespace vantor::inspect
