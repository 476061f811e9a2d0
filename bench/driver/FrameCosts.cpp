// CPU per frame of Skylet and of the X server, beside the least it can cost and beside other programs.
#include "Benchmarks.h"
#include "Measures.h"
#include "Prober.h"
#include "Stage.h"

#include <iostream>
#include <map>

namespace skylet::bench {

namespace {

struct Load {
    std::string name;
    std::string command;
    int count;
    double scale;
};

// One measure of one kind of mirror; per frame of one mirror, in ms.
struct Cost {
    double client = 0;
    double server = 0; // net of the target's own painting
    double frames = 0; // per second and mirror
};

struct Costs {
    std::vector<double> client, server, frames;
    void add(const Cost& cost) {
        client.push_back(cost.client);
        server.push_back(cost.server);
        frames.push_back(cost.frames);
    }
    [[nodiscard]] double sum() const { return median(client) + median(server); }
};

using Row = std::map<MirrorKind, Costs>;

std::vector<MirrorKind> kindsFor(const Load& load) {
    std::vector<MirrorKind> kinds{MirrorKind::copy};
    if (load.scale != 1) {
        kinds.push_back(MirrorKind::render);
    }
    kinds.push_back(MirrorKind::skylet);
    // The others always show the whole window in its own size, one window for each process.
    if (load.count == 1 && load.scale == 1) {
        kinds.push_back(MirrorKind::gstreamer);
        kinds.push_back(MirrorKind::ffplay);
    }
    return kinds;
}

// The server's CPU for one repaint of all windows that nobody mirrors, in ms.
double costOfPainting(Stage& stage, Target& target, double seconds) {
    rest(0.3);
    const double before = cpuTime(stage.server());
    const double repaints = target.repaints();
    rest(seconds);
    const double spent = cpuTime(stage.server()) - before;
    return spent / std::max(1.0, target.repaints() - repaints);
}

std::optional<Cost> measure(Stage& stage, const Load& load, MirrorKind kind, Target& target, double painting,
                            double seconds) {
    const Mirrors mirrors(stage, kind, load.scale, target);
    if (mirrors.windows().empty()) {
        std::cerr << nameOf(kind) << " did not show " << load.count << " windows" << std::endl;
        return std::nullopt;
    }
    Prober prober(stage.desktop().environment().at("DISPLAY"));
    const bool isPlayer = kind == MirrorKind::gstreamer || kind == MirrorKind::ffplay;
    rest(isPlayer ? 1.5 : 0.5);
    prober.countFrames(mirrors.windows());
    const double repaints = target.repaints();
    const double server = cpuTime(stage.server());
    const double client = cpuTime(mirrors.pid());
    const std::int64_t start = now();
    rest(seconds);
    const double clientSpent = cpuTime(mirrors.pid()) - client;
    const double serverSpent = cpuTime(stage.server()) - server - (target.repaints() - repaints) * painting;
    const double passed = static_cast<double>(now() - start) / 1e9;
    const double frames = prober.frames();
    if (frames < 1) {
        std::cerr << nameOf(kind) << " showed no frame" << std::endl;
        return std::nullopt;
    }
    return Cost{clientSpent / frames, serverSpent / frames, frames / passed / load.count};
}

void print(const Load& load, Row& row) {
    for (const MirrorKind kind : kindsFor(load)) {
        const Costs& costs = row[kind];
        if (costs.client.empty()) {
            continue;
        }
        const auto ratio = [&](MirrorKind to) {
            return row.contains(to) && !row[to].client.empty() ? formatted(costs.sum() / row[to].sum(), 2)
                                                               : std::string("-");
        };
        printRow({load.name + " n=" + std::to_string(load.count) + " " + formatted(load.scale, 1) + "x",
                  nameOf(kind), formatted(median(costs.client), 3), formatted(median(costs.server), 3),
                  formatted(costs.sum(), 3), formatted(median(costs.frames), 1), ratio(MirrorKind::copy),
                  ratio(MirrorKind::render), ratio(MirrorKind::gstreamer), ratio(MirrorKind::ffplay)});
    }
}

} // namespace

void benchFrameCosts(Stage& stage, const Options& options) {
    std::vector<Load> loads;
    for (const auto& [name, command] : {std::pair{"full", "full 60"}, {"blink", "blink 60"}}) {
        for (const double scale : {1.0, 0.5, 0.3}) {
            for (const int count : {1, 4, 16}) {
                if (!options.quick || (count != 4 && scale != 0.3)) {
                    loads.push_back({name, command, count, scale});
                }
            }
        }
    }
    std::vector<Row> rows(loads.size());
    for (int round = 0; round < options.rounds; ++round) {
        for (std::size_t i = 0; i < loads.size(); ++i) {
            const auto target = stage.openTarget(loads[i].count);
            target->tell(loads[i].command);
            const double painting = costOfPainting(stage, *target, options.seconds);
            for (const MirrorKind kind : kindsFor(loads[i])) {
                if (const auto cost = measure(stage, loads[i], kind, *target, painting, options.seconds)) {
                    rows[i][kind].add(*cost);
                }
            }
        }
    }
    std::cout << "\nCPU per frame and mirror, in ms, server net of the target's own painting; target "
              << targetWidth << "x" << targetHeight << ",\n\"full\" repaints all of it 60 times a second, "
              << "\"blink\" 8x16 pixels; ratios of client + server\n";
    printRow(
        {"load", "mirror", "client", "server", "sum", "frames/s", "/CopyArea", "/Render", "/gst", "/ffplay"});
    for (std::size_t i = 0; i < loads.size(); ++i) {
        print(loads[i], rows[i]);
    }
}

} // namespace skylet::bench
