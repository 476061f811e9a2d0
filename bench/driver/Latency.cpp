// From the target's drawing to the pixel in the mirror, and from the decision to show to a mapped picture.
#include "../Stamp.h"
#include "Benchmarks.h"
#include "Measures.h"
#include "Prober.h"
#include "Stage.h"

#include <iostream>
#include <map>
#include <sstream>

namespace skylet::bench {

namespace {

struct Latencies {
    std::vector<double> rested, streaming, interval;
};

// Uneven pauses, so that no timer runs in step with the changes.
double unevenPause(int i) {
    return 0.1 + 0.013 * (i % 11);
}

void measureRested(Prober& prober, Target& target, int changes, Latencies& latencies) {
    target.tell("still");
    for (int i = 0; i < changes; ++i) {
        rest(unevenPause(i));
        const auto number = static_cast<unsigned>(i % 2 == 0 ? 300 + i : 40 + i) % stampRange;
        // The answer is read afterwards: while it is waited for nobody looks at the mirror.
        const auto seen = prober.waitFor(number, 2, [&] { target.say("stamp " + std::to_string(number)); });
        const double drawn = std::stod("0" + target.answer()) / 1e6;
        if (seen) {
            latencies.rested.push_back(seen->time - drawn);
            latencies.interval.push_back(seen->interval);
        }
    }
}

void measureStreaming(Prober& prober, Target& target, double seconds, Latencies& latencies) {
    target.tell("full 60");
    rest(0.5);
    target.tell("frames");
    const auto seen = prober.watch(seconds);
    std::map<unsigned, std::vector<double>> drawn; // times by stamp
    std::istringstream frames(target.tell("frames"));
    unsigned number = 0;
    char colon = 0;
    for (double time = 0; frames >> number >> colon >> time;) {
        drawn[number % stampRange].push_back(time / 1e6);
    }
    target.tell("still");
    for (const Sighting& sighting : seen) {
        double latest = -1;
        for (const double time : drawn[sighting.number]) {
            latest = time <= sighting.time ? time : latest;
        }
        if (latest > 0) {
            latencies.streaming.push_back(sighting.time - latest);
            latencies.interval.push_back(sighting.interval);
        }
    }
}

std::string both(const std::vector<double>& values) {
    return values.empty() ? "-" : formatted(median(values), 2) + " / " + formatted(quantile(values, 0.9), 2);
}

} // namespace

void benchLatency(Stage& stage, const Options& options) {
    struct Case {
        MirrorKind kind;
        double scale;
    };
    const std::vector<Case> cases{{MirrorKind::copy, 1},     {MirrorKind::render, 0.5},
                                  {MirrorKind::skylet, 1},   {MirrorKind::skylet, 0.5},
                                  {MirrorKind::skylet, 0.3}, {MirrorKind::gstreamer, 1},
                                  {MirrorKind::ffplay, 1}};
    std::vector<Latencies> results(cases.size());
    const auto target = stage.openTarget(1);
    for (int round = 0; round < options.rounds; ++round) {
        for (std::size_t i = 0; i < cases.size(); ++i) {
            const Mirrors mirrors(stage, cases[i].kind, cases[i].scale, *target);
            if (mirrors.windows().empty()) {
                continue;
            }
            Prober prober(stage.desktop().environment().at("DISPLAY"));
            const int place = static_cast<int>((stampPlace + stampSize / 2.0) * cases[i].scale);
            prober.aim(mirrors.windows().front(), place, place);
            rest(1.5);
            measureRested(prober, *target, options.quick ? 10 : 25, results[i]);
            measureStreaming(prober, *target, options.seconds, results[i]);
        }
    }
    std::cout << "\nLatency from the target's drawing to the pixel in the mirror, in ms, median / 90 %\n";
    printRow({"mirror", "", "after rest", "", "in a stream", "read every"});
    for (std::size_t i = 0; i < cases.size(); ++i) {
        printRow({std::string(nameOf(cases[i].kind)) + " " + formatted(cases[i].scale, 1) + "x", "",
                  both(results[i].rested), "", both(results[i].streaming),
                  formatted(median(results[i].interval), 2)});
    }
}

void benchShowing(Stage& stage, const Options& options) {
    const auto target = stage.openTarget(1);
    const Window window = target->windows().front();
    target->tell("stamp 123");
    std::vector<double> mapped;
    std::vector<double> pictured;
    for (int i = 0; i < (options.quick ? 5 : 20); ++i) {
        Prober prober(stage.desktop().environment().at("DISPLAY"));
        prober.expectMapping();
        (void)stage.tellHost("pin " + std::to_string(window));
        // Its window is looked up by then, and its own decision to show is still to come.
        rest(0.06);
        const double decided = std::stod("0" + stage.tellHost("show " + std::to_string(window))) / 1e6;
        if (const auto map = prober.nextMapping(2)) {
            mapped.push_back(map->second - decided);
            prober.aim(map->first, stampPlace + stampSize / 2, stampPlace + stampSize / 2);
            double shown = -1;
            for (const std::int64_t end = now() + 2'000'000'000; shown < 0 && now() < end;) {
                const auto pixel = prober.read();
                shown = pixel && stampNumber(*pixel) == 123 ? static_cast<double>(now()) / 1e6 : -1;
            }
            pictured.push_back(shown - decided);
        }
        (void)stage.tellHost("unpin " + std::to_string(window));
        rest(unevenPause(i));
    }
    std::cout << "\nFrom the decision to show, in ms, median / 90 %\n";
    printRow({"overlay mapped", both(mapped)});
    printRow({"with a true picture", both(pictured)});
}

} // namespace skylet::bench
