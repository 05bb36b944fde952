// The run options: filled once from the side file, the registry and the command line, then read by every stage.
#pragma once

#include <cstdint>
#include <string>

namespace vantor {

/// One run's options. All strings are narrow byte strings as typed. After GetConfig only the four vxedisk result
/// flags change: the filter-driver checks write them and the report collector reads them.
struct RunConfig {
    /// periodicRunCount when /periodicruncount was not given.
    static constexpr std::uint8_t kNoRunCount = 255;

    bool uninstall = false;
    std::uint8_t periodicRunCount = kNoRunCount;
    bool continueRun = false;
    bool test = false;
    bool restTest = false;
    bool cleanState = false;
    std::int8_t datUpdateStatus = 0;
    bool datUpdateStatusSet = false;
    std::uint16_t delayPostDat = 0; ///< minutes
    bool verbose = false;
    bool vxediskDeleteFlag = false;      ///< result: the value DeleteFlag was present
    bool vxediskDeleteFlagError = false; ///< result: removing it failed
    bool vxediskStartValue = false;      ///< result: the value Start needed a correction
    bool vxediskStartValueError = false; ///< result: writing the correction failed
    std::string logFile;
    std::string hcmode;
    std::string datver;
    std::string server;
    std::uint16_t port = 0;
    std::string username;
    std::string password;
    std::string domain;
    std::string principal;
    std::string target;

    bool operator==(const RunConfig&) const = default;
};

/// The modes of a health check, as /hcmode names them. Comparisons are exact, case included.
inline constexpr char kPreUpdateMode[] = "predatupdate";
inline constexpr char kPostUpdateMode[] = "postdatupdate";
inline constexpr char kPeriodicMode[] = "periodic";

bool IsPreUpdate(const RunConfig& config);
bool IsPostUpdate(const RunConfig& config);
bool IsPeriodic(const RunConfig& config);

/// True for each of the three modes; an empty mode is none of them.
bool IsHealthCheck(const RunConfig& config);

} // namespace vantor
