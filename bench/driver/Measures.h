// What the kernel tells about a process, and what to make of several readings.
//
// Failure: a process that is gone answers 0.
#pragma once

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

namespace skylet::bench {

// Monotonic, in nanoseconds.
[[nodiscard]] std::int64_t now();
void rest(double seconds);

// CPU time of all threads so far, in ms.
[[nodiscard]] double cpuTime(pid_t pid);
// How often its threads have gone to sleep so far.
[[nodiscard]] long voluntarySwitches(pid_t pid);
// Proportional set size in MiB.
[[nodiscard]] double proportionalMemory(pid_t pid);

// 0.5 is the median. 0 when there are no values.
[[nodiscard]] double quantile(std::vector<double> values, double part);
[[nodiscard]] inline double median(std::vector<double> values) {
    return quantile(std::move(values), 0.5);
}

// With this many digits after the point.
[[nodiscard]] std::string formatted(double value, int digits);

// One line of a table: the first cell left, all others right.
void printRow(const std::vector<std::string>& cells);

} // namespace skylet::bench
