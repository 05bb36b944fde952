// The cost of one run of a program under Wine.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace vantor::bench {

/// The cost of one run, without Wine's server, which serves all programs.
struct Cost {
    double wallMs = 0;    ///< from the start of the process until its end was seen
    double cpuMs = 0;     ///< user and system time of the process
    double peakMib = 0;   ///< its largest resident size
    double wireBytes = 0; ///< sent over loopback meanwhile, in both directions, headers included
    int exitCode = -1;
};

/// Throws std::runtime_error if a program that does nothing seems to take much memory, which means that the memory of
/// the measuring program is counted.
void CheckMeasure(const std::filesystem::path& output);

/// Runs "wine COMMAND..." to its end, its output in the file. It is ended after a minute. Throws std::runtime_error when
/// nothing could be measured.
Cost Measure(const std::vector<std::string>& command, const std::filesystem::path& output);

/// What a run touched.
struct Touched {
    std::size_t files = 0;        ///< files and folders, by path
    std::size_t registryKeys = 0; ///< keys, by path, including missing ones
};

/// Runs the command again, with Wine's trace of its calls. Throws std::runtime_error when it fails.
Touched Trace(const std::vector<std::string>& command, const std::filesystem::path& output);

} // namespace vantor::bench
