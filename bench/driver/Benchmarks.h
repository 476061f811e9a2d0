// The parts of the benchmark. Each prints its table on standard output.
#pragma once

namespace skylet::bench {

class Stage;

struct Options {
    bool quick = false;
    int rounds = 3;
    double seconds = 2; // of each single measure
};

void benchFrameCosts(Stage& stage, const Options& options);
void benchLatency(Stage& stage, const Options& options);
void benchShowing(Stage& stage, const Options& options);
void benchResting(Stage& stage, const Options& options);
void benchInput(Stage& stage, const Options& options);
void benchProgram(Stage& stage, const Options& options);

} // namespace skylet::bench
