// The run options, filled once from the side file, the registry and the command line and read by every stage.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vantor {

/// The options of one run. All strings are narrow and as typed. After GetConfig only the four vxedisk result flags
/// change: the filter-driver checks set them and the report collector reads them.
struct RunConfig {
    /// Value of periodicRunCount if /periodicruncount was not given.
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

/// The modes of a health check, with their numbers in the health record.
enum class Mode : std::uint8_t {
    none = 0, ///< no health check
    preUpdate = 1,
    postUpdate = 2,
    periodic = 3,
};

/// The name of each mode, in /hcmode and in the output of the tools.
inline constexpr struct {
    Mode mode;
    std::string_view name;
} kModeNames[] = {
    {Mode::preUpdate, "predatupdate"},
    {Mode::postUpdate, "postdatupdate"},
    {Mode::periodic, "periodic"},
};

/// The mode that hcmode names (case-sensitive); Mode::none for any other text.
Mode ModeOf(const RunConfig& config);

/// The mode's name; empty for Mode::none and for unknown numbers.
std::string_view ModeName(Mode mode);

} // namespace vantor
