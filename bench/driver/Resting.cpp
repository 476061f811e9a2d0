// What pins cost while nothing changes: wake-ups and memory.
#include "Benchmarks.h"
#include "Measures.h"
#include "Stage.h"

#include <iostream>

namespace skylet::bench {

namespace {

// The program's own timers, in seconds: looking for closed windows, deciding who is in front, and for each
// shown overlay following its window.
constexpr double pollPeriod = 2.0;
constexpr double orderPeriod = 0.35;
constexpr double framePeriod = 0.5;

} // namespace

void benchResting(Stage& stage, const Options& options) {
    std::cout << "\nAt rest, still targets\n";
    printRow({"overlays", "timers/s", "loop/s", "sleeps/s", "CPU %", "server %", "PSS MiB"});
    stage.restartHost();
    for (const int count : {0, 1, 16}) {
        const auto target = stage.openTarget(count == 0 ? 1 : count);
        std::unique_ptr<Mirrors> mirrors;
        if (count > 0) {
            mirrors = std::make_unique<Mirrors>(stage, MirrorKind::skylet, 1, *target);
            if (mirrors->windows().empty()) {
                std::cerr << "Skylet did not show " << count << " windows" << std::endl;
                continue;
            }
        }
        rest(2);
        const double seconds = options.quick ? 4 : 12;
        const pid_t pid = stage.host().pid();
        const double turns = std::stod("0" + stage.tellHost("turns"));
        const double switches = static_cast<double>(voluntarySwitches(pid));
        const double client = cpuTime(pid);
        const double server = cpuTime(stage.server());
        rest(seconds);
        const double clientSpent = cpuTime(pid) - client;
        const double serverSpent = cpuTime(stage.server()) - server;
        const double slept = static_cast<double>(voluntarySwitches(pid)) - switches;
        const double turned = std::stod("0" + stage.tellHost("turns")) - turns;
        printRow({std::to_string(count), formatted(1 / pollPeriod + 1 / orderPeriod + count / framePeriod, 1),
                  formatted(turned / seconds, 1), formatted(slept / seconds, 1),
                  formatted(clientSpent / seconds / 10, 2), formatted(serverSpent / seconds / 10, 2),
                  formatted(proportionalMemory(pid), 1)});
    }
}

} // namespace skylet::bench
