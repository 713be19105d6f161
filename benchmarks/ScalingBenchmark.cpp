// SPDX-License-Identifier: GPL-3.0-or-later
// What whole engines cost while nothing moves: against the plain path, and along each axis alone.
#include "EngineRun.h"
#include "Measure.h"
#include "Results.h"
#include "binaural/BinauralProcessorBuilder.h"
#include "binaural/ReverbConvolutionFactory.h"
#include "parameters/core/Scene.h"
#include "support/FlushDenormals.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <malloc.h>

namespace {

using bench::EngineChoice;
using bench::EngineRun;
using bench::HeadAndRooms;
using bench::Results;
using bench::Reverb;
using orvane::RenderPath;

constexpr int repetitions = 7;
constexpr double fastSeconds = 4; ///< Of sound, for one figure.
constexpr double plainSeconds = 0.5;

std::string percent(double share) { return bench::number(100 * share); }

/// Median share of a core; the fast path's sound is checked first.
double cost(const EngineChoice& choice, HeadAndRooms& data) {
    bench::expectSoundOfPlainPath(choice, data);
    EngineRun run(choice, data);
    run.share(0.2);
    std::vector<double> shares(repetitions);
    for (double& share : shares)
        share = run.share(fastSeconds);
    return bench::median(shares);
}

/// One axis: a table, JSON, and columns to plot.
class Axis {
public:
    Axis(const Results& results, std::string key, const std::string& title, const std::string& unit)
        : results(results), key(std::move(key)) {
        std::cout << "\n### " << title << "\n\n";
        Results::heading({unit, "percent of a core"});
    }
    void point(const std::string& shown, double x, double share) const {
        Results::line({shown, percent(share)});
        results.record(key, {{"x", x}, {"share", share}});
        results.plot("scaling-" + key, bench::number(x, 0) + " " + bench::number(100 * share, 4));
    }

private:
    const Results& results;
    std::string key;
};

constexpr std::array layouts{"1.0", "2.0 +/-30°", "5.1 ITU", "5.1.4", "7.1.4", "13.1", "9.1.6"};
constexpr std::array channelCounts{1, 2, 6, 10, 12, 14, 16};

void alongChannels(const Results& results, HeadAndRooms& data) {
    const Axis axis(results, "channels", "Channels (\"Mix Room Large\", no reverb, blocks of 64)",
                    "channels");
    for (std::size_t i = 0; i < layouts.size(); ++i)
        axis.point(std::to_string(channelCounts[i]), channelCounts[i],
                   cost({layouts[i], "Mix Room Large", Reverb::none, 64, {}}, data));
}

void alongResponses(const Results& results, HeadAndRooms& data) {
    const Axis axis(results, "responses",
                    "Length of the loudspeakers' responses (7.1.4, no reverb, blocks of 64)", "samples");
    for (const char* const scene : {"Car", "Mix Room", "Mix Room Large", "Club Large"}) {
        const auto& preset = orvane::kestrum::core::Scene::get(orvane::kestrum::core::selectorId(scene));
        const std::uint64_t length =
            orvane::binauralResponseLength(static_cast<std::uint32_t>(preset.roomType), preset.customRoom,
                                           static_cast<float>(bench::sampleRate), 64);
        axis.point(std::to_string(length) + " (\"" + scene + "\")", static_cast<double>(length),
                   cost({"7.1.4", scene, Reverb::none, 64, {}}, data));
    }
}

/// The late reverb's convolver by itself.
void alongReverbs(const Results& results) {
    const Axis axis(results, "reverb", "Length of the late reverb (its convolver alone, blocks of 64)",
                    "frames");
    constexpr std::uint64_t blockSize = 64;
    for (const std::uint64_t frames : {4096U, 23147U, 55656U, 86655U, 128975U, 220245U}) {
        const std::uint64_t partitions = (frames + blockSize - 1) / blockSize;
        auto convolver =
            orvane::ReverbConvolutionFactory().create(bench::sampleRate, blockSize, partitions, 1);
        orvane::SampleBuffer response(2, (partitions + 1) * blockSize);
        for (std::uint32_t ear = 0; ear < 2; ++ear)
            std::ranges::copy(test::noise(response.numSamples, test::Seed{ear + 1}),
                              response.channelPointers[ear]);
        convolver->prepare(response);
        test::Signal noise = test::noise(blockSize, test::Seed{3});
        orvane::SampleBuffer output(2, blockSize);
        const auto blocks = static_cast<std::uint64_t>(fastSeconds * bench::sampleRate) / blockSize;
        std::vector<double> shares;
        for (int i = 0; i < repetitions; ++i) {
            const double start = bench::threadSeconds();
            for (std::uint64_t block = 0; block < blocks; ++block)
                convolver->process({noise.data(), blockSize}, output, response, false);
            shares.push_back((bench::threadSeconds() - start) / fastSeconds);
        }
        axis.point(std::to_string(frames), static_cast<double>(frames), bench::median(shares));
    }
}

void alongBlocks(const Results& results, HeadAndRooms& data) {
    const Axis axis(results, "blocks", "Block (9.1.6 in \"Mix Room\")", "samples");
    for (const std::uint64_t blockSize : {32U, 64U, 128U, 256U, 512U, 1024U, 2048U})
        axis.point(std::to_string(blockSize), static_cast<double>(blockSize),
                   cost({"9.1.6", "Mix Room", Reverb::ofScene, blockSize, {}}, data));
}

double residentBytes() {
    malloc_trim(0);
    std::ifstream statm("/proc/self/statm");
    double total = 0, resident = 0;
    statm >> total >> resident;
    return resident * 4096;
}

/// Several engines of one process that play in turns on one thread, as in a host's chain.
void alongInstances(const Results& results, HeadAndRooms& data) {
    std::cout << "\n### Instances (7.1.4, longest reverb, blocks of 64)\n\n";
    Results::heading(
        {"instances", "percent of a core, each", "MB of memory, all", "ms to build the last one"});
    const double before = residentBytes();
    std::vector<std::unique_ptr<EngineRun>> runs;
    for (const std::size_t count : {1U, 2U, 4U, 8U, 16U}) {
        double building = 0;
        while (runs.size() < count) {
            const double start = bench::wallSeconds();
            runs.push_back(std::make_unique<EngineRun>(
                EngineChoice{"7.1.4", "Mix Room Large", Reverb::longest, 64, {}}, data));
            building = bench::wallSeconds() - start;
        }
        std::vector<double> shares;
        for (int i = 0; i < 3; ++i) {
            double used = 0;
            constexpr int blocks = 1500;
            for (int block = 0; block < blocks; ++block)
                for (const auto& run : runs)
                    used += run->block().thread;
            shares.push_back(used / (blocks * runs.front()->blockSeconds() * static_cast<double>(count)));
        }
        const double bytes = residentBytes() - before;
        const double share = bench::median(shares);
        Results::line({std::to_string(count), percent(share), bench::number(bytes / 1e6, 0),
                       bench::number(1000 * building, 0)});
        results.record("instances", {{"x", static_cast<double>(count)},
                                     {"share", share},
                                     {"bytes", bytes},
                                     {"secondsToBuild", building}});
        results.plot("scaling-instances", std::to_string(count) + " " + bench::number(100 * share, 4));
        if (count == 16)
            results.goal("memory-16", bytes / 1e6);
    }
}

/// Plain and fast in turns.
void againstThePlainPath(const Results& results, HeadAndRooms& data) {
    std::cout << "### Against the plain path (longest reverb, nothing moving)\n\n";
    Results::heading({"layout, block", "fast", "plain", "plain / fast"});
    for (const char* const layout : {"7.1.4", "9.1.6"})
        for (const std::uint64_t blockSize : {32U, 64U, 128U, 512U}) {
            EngineChoice choice{layout, "Mix Room", Reverb::longest, blockSize, {}};
            bench::expectSoundOfPlainPath(choice, data);
            EngineRun fast(choice, data);
            choice.options.path = RenderPath::plain;
            EngineRun plain(choice, data);
            std::vector<double> fastShares, plainShares, ratios;
            fast.share(0.2);
            for (int i = 0; i < repetitions; ++i) {
                fastShares.push_back(fast.share(fastSeconds / 2));
                plainShares.push_back(plain.share(plainSeconds));
                ratios.push_back(plainShares.back() / fastShares.back());
            }
            const double share = bench::median(fastShares);
            const std::string name = std::string(layout) + ", " + std::to_string(blockSize);
            Results::line({name, percent(share), percent(bench::median(plainShares)),
                           bench::number(bench::median(ratios), 1)});
            results.record(
                "againstPlain " + name,
                {{"fast", share}, {"plain", bench::median(plainShares)}, {"ratio", bench::median(ratios)}});
            const std::string key = std::string(layout) + "-" + std::to_string(blockSize);
            results.goal("against-plain-" + key, bench::median(ratios));
            results.goal("steady-" + key, 100 * share);
        }
}

/// The README's table.
void atDefaultSettings(const Results& results, HeadAndRooms& data) {
    std::cout << "\n### Default settings\n\n";
    Results::heading({"", "32 samples", "64 samples", "128 samples", "512 samples"});
    const auto row = [&](const std::string& shown, const EngineChoice& chosen) {
        std::vector<std::string> cells{shown};
        for (const std::uint64_t blockSize : {32U, 64U, 128U, 512U}) {
            EngineChoice choice = chosen;
            choice.blockSize = blockSize;
            const double share = cost(choice, data);
            cells.push_back(percent(share));
            results.record("default " + shown, {{"block", static_cast<double>(blockSize)}, {"share", share}});
        }
        Results::line(cells);
    };
    row("2.0 in \"Mix Room\"", {"2.0 +/-30°", "Mix Room", Reverb::ofScene, 0, {}});
    row("5.1 in \"Mix Room\"", {"5.1 ITU", "Mix Room", Reverb::ofScene, 0, {}});
    row("7.1.4 in \"Mix Room\"", {"7.1.4", "Mix Room", Reverb::ofScene, 0, {}});
    row("9.1.6 in \"Mix Room\"", {"9.1.6", "Mix Room", Reverb::ofScene, 0, {}});
    row("9.1.6 in \"Stadium\"", {"9.1.6", "Stadium", Reverb::ofScene, 0, {}});
    row("9.1.6 in \"Club Large\", the longest reverb of a Scene",
        {"9.1.6", "Club Large", Reverb::ofScene, 0, {}});
    row("9.1.6 in \"Analytic Dry\", no room", {"9.1.6", "Analytic Dry", Reverb::ofScene, 0, {}});
}

void run(const Results& results) {
    HeadAndRooms data;
    const test::FlushDenormals flush;
    std::cout << "Percent of a core at 48 kHz, nothing moving, " << HeadAndRooms::description() << ".\n\n";
    againstThePlainPath(results, data);
    atDefaultSettings(results, data);
    alongChannels(results, data);
    alongResponses(results, data);
    alongReverbs(results);
    alongBlocks(results, data);
    alongInstances(results, data);
}

} // namespace

int main(int argumentCount, char** arguments) {
    return bench::runProgram("scaling", argumentCount, arguments, run);
}
