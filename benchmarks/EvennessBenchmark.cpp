// SPDX-License-Identifier: GPL-3.0-or-later
// How evenly whole engines spread their work: the distribution of the time that one block takes, while nothing
// moves, while the head turns and while Scenes switch. The worst block is the one that drops out.
#include "EngineRun.h"
#include "Measure.h"
#include "Results.h"
#include "support/FlushDenormals.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <string>
#include <vector>

namespace {

using bench::EngineChoice;
using bench::EngineRun;
using bench::Results;
using bench::Reverb;
using orvane::RenderPath;

constexpr const char* firstScene = "Club Large"; ///< The longest reverb that a Scene has: 128975 frames.
constexpr const char* secondScene = "Stadium";
constexpr double switchEverySeconds = 0.025; ///< The fade of a switch takes 10 ms behind the first new block.

struct Motion {
    const char* name;
    const char* key;
    double degreesPerSecond;
    bool switches;
};
constexpr Motion motions[]{{"at rest", "rest", 0, false},
                           {"turning 90 degrees a second", "turn90", 90, false},
                           {"turning 360 degrees a second", "turn360", 360, false},
                           {"Scenes switching", "switch", 0, true}};

/// How much is played for one distribution.
struct Amount {
    std::uint64_t blocks;
    std::uint64_t switches;
    int runs;
};
constexpr Amount fastAmount{3000, 24, 5};
constexpr Amount plainAmount{500, 6, 1};

/// Shares of a block's time.
struct Distribution {
    double mean, p50, p99, p999, worst;
};

Distribution distributionOf(const std::vector<double>& shares) {
    return {bench::mean(shares), bench::quantile(shares, 0.5), bench::quantile(shares, 0.99),
            bench::quantile(shares, 0.999), bench::worst(shares)};
}

/// The runs' medians, and the worst of all.
struct Summary {
    Distribution wall;
    Distribution thread;
    double worstWallOfAll;
    double worstThreadOfAll;
};

Distribution medianOf(const std::vector<Distribution>& runs) {
    const auto of = [&](double Distribution::*figure) {
        std::vector<double> values(runs.size());
        std::ranges::transform(runs, values.begin(), figure);
        return bench::median(values);
    };
    return {of(&Distribution::mean), of(&Distribution::p50), of(&Distribution::p99), of(&Distribution::p999),
            of(&Distribution::worst)};
}

double worstOf(const std::vector<Distribution>& runs) {
    double worst = 0;
    for (const Distribution& run : runs)
        worst = std::max(worst, run.worst);
    return worst;
}

/// The other engine of a switch is made between two blocks, off the clock, as the product does on another thread.
void measureOnce(EngineRun& run, const Motion& motion, const Amount& amount, std::vector<double>& wall,
                 std::vector<double>& thread) {
    const double blockSeconds = run.blockSeconds();
    const auto betweenSwitches = 3 + static_cast<std::uint64_t>(std::ceil(switchEverySeconds / blockSeconds));
    const std::uint64_t blocks = motion.switches ? amount.switches * betweenSwitches : amount.blocks;
    run.share(0.3); // the first responses and caches are not the matter here
    bool second = false;
    for (std::uint64_t i = 0; i < blocks; ++i) {
        if (motion.switches && i % betweenSwitches == 0) {
            second = !second;
            run.rig.product.chooseScene(second ? secondScene : firstScene);
            run.rig.change();
        }
        const double degrees = static_cast<double>(i) * blockSeconds * motion.degreesPerSecond;
        run.rig.product.headRotation->setValue(static_cast<float>(std::remainder(degrees, 360.0)));
        const bench::BlockTime time = run.block();
        wall.push_back(time.wall / blockSeconds);
        thread.push_back(time.thread / blockSeconds);
    }
}

Summary measure(const EngineChoice& choice, bench::HeadAndRooms& data, const Motion& motion) {
    const Amount& amount = choice.options.path == RenderPath::fast ? fastAmount : plainAmount;
    std::vector<Distribution> walls;
    std::vector<Distribution> threads;
    for (int repetition = 0; repetition < amount.runs; ++repetition) {
        EngineRun run(choice, data);
        std::vector<double> wall;
        std::vector<double> thread;
        measureOnce(run, motion, amount, wall, thread);
        walls.push_back(distributionOf(wall));
        threads.push_back(distributionOf(thread));
    }
    return {medianOf(walls), medianOf(threads), worstOf(walls), worstOf(threads)};
}

std::string percent(double share) { return bench::number(100 * share); }

void report(const Results& results, const EngineChoice& choice, const Motion& motion,
            const Summary& summary) {
    const bool fast = choice.options.path == RenderPath::fast;
    const bool longest = choice.reverb == Reverb::longest;
    const double microseconds = 1e6 * static_cast<double>(choice.blockSize) / bench::sampleRate;
    const std::string block = std::to_string(choice.blockSize);
    Results::line({block + ", " + (longest ? "longest reverb" : firstScene) + ", " + motion.name,
                   fast ? "fast" : "plain", percent(summary.thread.mean), percent(summary.thread.p50),
                   percent(summary.thread.p99), percent(summary.thread.p999), percent(summary.thread.worst),
                   bench::number(summary.thread.worst * microseconds), percent(summary.worstThreadOfAll),
                   percent(summary.wall.p50), percent(summary.wall.worst), percent(summary.worstWallOfAll)});
    const std::string path = fast ? "fast" : "plain";
    const std::string key = path + "-" + block + "-" + (longest ? "longest" : "club") + "-" + motion.key;
    results.record(key, {{"microsecondsPerBlock", microseconds},
                         {"threadMean", summary.thread.mean},
                         {"threadP50", summary.thread.p50},
                         {"threadP99", summary.thread.p99},
                         {"threadP999", summary.thread.p999},
                         {"threadWorst", summary.thread.worst},
                         {"threadWorstOfAll", summary.worstThreadOfAll},
                         {"wallP50", summary.wall.p50},
                         {"wallP99", summary.wall.p99},
                         {"wallP999", summary.wall.p999},
                         {"wallWorst", summary.wall.worst},
                         {"wallWorstOfAll", summary.worstWallOfAll}});
    if (!fast)
        return;
    const std::string figure = block + (longest ? "-longest-" : "-club-") + motion.key;
    results.goal("evenness-mean-" + figure, 100 * summary.thread.mean);
    results.goal("evenness-worst-" + figure, 100 * summary.thread.worst);
    if (longest)
        results.plot("evenness-" + block,
                     "\"" + std::string(motion.name) + "\" " + percent(summary.thread.p50) + " " +
                         percent(summary.thread.p99) + " " + percent(summary.thread.p999) + " " +
                         percent(summary.thread.worst));
}

void run(const Results& results) {
    bench::HeadAndRooms data;
    const test::FlushDenormals flush;
    std::cout << "16 loudspeakers (9.1.6) at 48 kHz, " << bench::HeadAndRooms::description()
              << "; percent of a block's time.\n\n";
    Results::heading({"block, room, movement", "path", "mean", "median", "99 %", "99.9 %", "worst",
                      "worst, µs", "worst of all runs", "median by the clock", "worst by the clock",
                      "worst of all by the clock"});
    for (const std::uint64_t blockSize : {32U, 64U, 128U, 512U})
        for (const Reverb reverb : {Reverb::ofScene, Reverb::longest}) {
            EngineChoice choice{"9.1.6", firstScene, reverb, blockSize, {}};
            bench::expectSoundOfPlainPath(choice, data);
            for (const Motion& motion : motions)
                for (const RenderPath path : {RenderPath::plain, RenderPath::fast}) {
                    choice.options.path = path;
                    report(results, choice, motion, measure(choice, data, motion));
                }
        }
}

} // namespace

int main(int argumentCount, char** arguments) {
    return bench::runProgram("evenness", argumentCount, arguments, run);
}
