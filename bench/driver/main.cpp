// Measures Skylet on a virtual desktop, beside what else could do its work.
//   bench_driver [--quick] [frames] [latency] [show] [rest] [program] [input]
#include "Benchmarks.h"
#include "Stage.h"

#include <csignal>
#include <iostream>
#include <set>
#include <string>

int main(int argc, char** argv) {
    using namespace skylet::bench;
    std::signal(SIGPIPE, SIG_IGN);
    Options options;
    std::set<std::string> parts;
    for (int i = 1; i < argc; ++i) {
        if (std::string(argv[i]) == "--quick") {
            options = {true, 1, 1.5};
        } else {
            parts.insert(argv[i]);
        }
    }
    Stage stage;
    if (!stage.problem().empty()) {
        std::cerr << stage.problem() << std::endl;
        return 1;
    }
    const auto wanted = [&](const char* part) {
        return parts.empty() || parts.contains(part);
    };
    if (wanted("rest")) {
        benchResting(stage, options);
    }
    if (wanted("show")) {
        benchShowing(stage, options);
    }
    if (wanted("program")) {
        benchProgram(stage, options);
    }
    if (wanted("input")) {
        benchInput(stage, options);
    }
    if (wanted("latency")) {
        benchLatency(stage, options);
    }
    if (wanted("frames")) {
        benchFrameCosts(stage, options);
    }
    return 0;
}
