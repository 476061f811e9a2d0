// The real program: how long its start takes, and its way from the shortcut to an overlay.
#include "Benchmarks.h"
#include "Measures.h"
#include "Prober.h"
#include "harness/Application.h"
#include "harness/SkyletProgram.h"
#include "harness/Wait.h"

#include <filesystem>
#include <iostream>

namespace skylet::bench {

namespace {

using desktop::eventually;

struct Times {
    std::vector<double> launch, pin, show, resting, oneOverlay, sleeps;
};

double milliseconds() {
    return static_cast<double>(now()) / 1e6;
}

// Waits for a line of the log without a pause. In ms since `start`, or -1.
double untilLogged(const desktop::SkyletProgram& program, const std::string& line, double start) {
    while (program.logText().find(line) == std::string::npos) {
        if (milliseconds() - start > 20'000) {
            return -1;
        }
        rest(0.0005);
    }
    return milliseconds() - start;
}

void measureRun(Stage& stage, Target& target, Times& times) {
    const Window window = target.windows().front();
    std::error_code ignored;
    std::filesystem::remove(stage.desktop().statePath("Skylet/skylet.log"), ignored);
    double start = milliseconds();
    desktop::SkyletProgram program(stage.desktop(), {{"captureRate", "60"}});
    const double launched = untilLogged(program, "Launched successfully", start);
    if (launched < 0) {
        std::cerr << "Skylet did not launch: " << program.errorOutput() << std::endl;
        return;
    }
    times.launch.push_back(launched);
    rest(1);
    times.resting.push_back(proportionalMemory(program.process().pid()));

    stage.x().activate(window);
    (void)eventually([&] { return stage.x().activeWindow() == window; });
    rest(0.3);
    start = milliseconds();
    program.pressShortcut();
    const double pinned =
        untilLogged(program, "pin: overlay created for wid=" + std::to_string(window), start);
    if (pinned < 0) {
        std::cerr << "the shortcut did not pin" << std::endl;
        return;
    }
    times.pin.push_back(pinned);
    rest(1);
    Prober prober(stage.desktop().environment().at("DISPLAY"));
    prober.expectMapping();
    start = milliseconds();
    stage.activateOther();
    if (const auto map = prober.nextMapping(5)) {
        times.show.push_back(map->second - start);
    } else {
        std::cerr << "no overlay was shown:\n" << program.logText();
    }
    rest(1);
    times.oneOverlay.push_back(proportionalMemory(program.process().pid()));
    const double slept = static_cast<double>(voluntarySwitches(program.process().pid()));
    rest(4);
    times.sleeps.push_back((static_cast<double>(voluntarySwitches(program.process().pid())) - slept) / 4);
    stage.x().activate(window);
    rest(0.5);
    program.pressShortcut();
}

} // namespace

void benchProgram(Stage& stage, const Options& options) {
    if (!std::filesystem::exists(SKYLET_BUILD_FOLDER "/skylet")) {
        std::cout << "\nThe program itself is not built; left out.\n";
        return;
    }
    // It would share its libraries' memory with the program, and half of that would count for each.
    stage.host().stop();
    const auto target = stage.openTarget(1);
    Times times;
    for (int round = 0; round < (options.quick ? 1 : 3); ++round) {
        measureRun(stage, *target, times);
    }
    stage.restartHost();
    std::cout << "\nThe program itself, medians\n";
    const auto line = [](const std::string& name, const std::vector<double>& values) {
        printRow({name, values.empty() ? "-" : formatted(median(values), 1)});
    };
    line("start, ms", times.launch);
    line("shortcut to pin, ms", times.pin);
    line("activation to shown, ms", times.show);
    line("PSS without pins, MiB", times.resting);
    line("PSS with one, MiB", times.oneOverlay);
    line("sleeps/s with one", times.sleeps);
    std::cout << "(activation to shown: up to 120 ms of it are waited on purpose)\n";
}

} // namespace skylet::bench
