#include "Measures.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>
#include <thread>

namespace skylet::bench {

namespace {

// The number behind `key` in a file of the kernel's.
long numberIn(const std::string& path, const std::string& key) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(key)) {
            return std::stol(line.substr(key.size()));
        }
    }
    return 0;
}

} // namespace

std::int64_t now() {
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void rest(double seconds) {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

double cpuTime(pid_t pid) {
    clockid_t clock = 0;
    timespec time{};
    if (::clock_getcpuclockid(pid, &clock) != 0 || ::clock_gettime(clock, &time) != 0) {
        return 0;
    }
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

long voluntarySwitches(pid_t pid) {
    long sum = 0;
    std::error_code ignored;
    const std::string folder = "/proc/" + std::to_string(pid) + "/task";
    for (const auto& thread : std::filesystem::directory_iterator(folder, ignored)) {
        sum += numberIn(thread.path() / "status", "voluntary_ctxt_switches:");
    }
    return sum;
}

double proportionalMemory(pid_t pid) {
    return static_cast<double>(numberIn("/proc/" + std::to_string(pid) + "/smaps_rollup", "Pss:")) / 1024;
}

double quantile(std::vector<double> values, double part) {
    if (values.empty()) {
        return 0;
    }
    std::ranges::sort(values);
    const double place = part * static_cast<double>(values.size() - 1);
    const auto below = static_cast<std::size_t>(place);
    const std::size_t above = std::min(below + 1, values.size() - 1);
    return values[below] + (values[above] - values[below]) * (place - std::floor(place));
}

std::string formatted(double value, int digits) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

void printRow(const std::vector<std::string>& cells) {
    constexpr std::size_t firstWidth = 24;
    constexpr std::size_t width = 10;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const std::size_t column = i == 0 ? firstWidth : width;
        const std::string blanks(std::max(column, cells[i].size() + 1) - cells[i].size(), ' ');
        std::cout << (i == 0 ? cells[i] + blanks : blanks + cells[i]);
    }
    std::cout << std::endl;
}

} // namespace skylet::bench
