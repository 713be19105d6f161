// SPDX-License-Identifier: GPL-3.0-or-later
// The longest late reverb that there is: room 28, 220245 frames, 4.6 s, on the plain path and on the fast one.
#include "ShareOfRealTime.h"
#include "assembly/Product.h"
#include "room/ReverbFilterFactory.h"
#include "room/ReverbProcessor.h"
#include "support/ReverbFiles.h"
#include "support/Signals.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include <malloc.h>

namespace {

using orvane::RenderPath;
using orvane::SampleBuffer;

constexpr double sampleRate = 48000.0;
constexpr std::uint64_t responseFrames = test::longestReverbFrames;
constexpr float residueLimit = 1e-6f; // -120 dB of the peak

using orvane::kestrum::core::ReverbProcessor;

std::unique_ptr<ReverbProcessor> makeReverb(const test::Product& product, std::uint64_t blockSize) {
    product.parameterSet->setReverbOn(true, false);
    product.parameterSet->setRoomType(orvane::VirtualAcoustics::Type{28}, false);
    product.parameterSet->setReverbDecayPercent(100.0f, false);
    return std::make_unique<ReverbProcessor>(sampleRate, blockSize, orvane::ReverbFilterFactory(),
                                             product.factory, product.parameterSet.get(),
                                             test::fullReverbFolder());
}

/// One engine's reverb, fed with noise block by block.
class LongestReverb {
public:
    LongestReverb(RenderPath path, std::uint64_t blockSize)
        : product(nullptr, test::fullReverbFolder(), {.path = path}),
          reverb(makeReverb(product, blockSize)),
          noise(test::noise(1 << 16, test::Seed{2})),
          input(2, blockSize),
          output(2, blockSize) {}

    void feed() {
        for (std::uint64_t i = 0; i < input.numSamples; ++i, ++position) {
            input.channelPointers[0][i] = noise[position % noise.size()];
            input.channelPointers[1][i] = 0.0f;
        }
    }
    void render() { reverb->process(input, output); }

    test::Product product;
    std::unique_ptr<ReverbProcessor> reverb;
    test::Signal noise;
    std::uint64_t position = 0;
    SampleBuffer input;
    SampleBuffer output;
};

/// The largest difference between both paths relative to the plain one's peak, over the response's length.
float residue(std::uint64_t blockSize) {
    LongestReverb plain(RenderPath::plain, blockSize);
    LongestReverb fast(RenderPath::fast, blockSize);
    float peak = 0;
    float difference = 0;
    while (plain.position < 5 * blockSize + responseFrames) {
        for (LongestReverb* reverb : {&plain, &fast}) {
            reverb->feed();
            reverb->render();
        }
        for (std::uint64_t ear = 0; ear < 2; ++ear)
            for (std::uint64_t i = 0; i < blockSize; ++i) {
                const float expected = plain.output.channelPointers[ear][i];
                const float off = std::abs(fast.output.channelPointers[ear][i] - expected);
                peak = std::max(peak, std::abs(expected));
                difference = off <= difference ? difference : off;
            }
    }
    return difference / peak;
}

/// The largest of the medians that the blocks at one place of the layers' periods have: the worst block without
/// what other programs do to it.
double worstPlace(const std::vector<double>& microseconds) {
    constexpr std::size_t places = 256; // a multiple of all periods
    double worst = 0;
    for (std::size_t place = 0; place < places; ++place) {
        std::vector<double> there;
        for (std::size_t block = place; block < microseconds.size(); block += places)
            there.push_back(microseconds[block]);
        const auto middle = there.begin() + static_cast<std::ptrdiff_t>(there.size() / 2);
        if (there.size() < 3)
            return 0;
        std::nth_element(there.begin(), middle, there.end());
        worst = std::max(worst, *middle);
    }
    return worst;
}

/// The times of all host calls, and what is told of them.
class CallTimes {
public:
    CallTimes() { microseconds.reserve(1 << 20); }

    /// @return seconds.
    template <typename Work>
    double take(Work work) {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double, std::micro> taken = std::chrono::steady_clock::now() - start;
        microseconds.push_back(taken.count());
        return taken.count() * 1e-6;
    }

    void report(benchmark::State& state) {
        state.counters["place"] = worstPlace(microseconds);
        std::ranges::sort(microseconds);
        const auto quantile = [this](double part) {
            return microseconds[static_cast<std::size_t>(part *
                                                         static_cast<double>(microseconds.size() - 1))];
        };
        state.counters["p50"] = quantile(0.5);
        state.counters["p99"] = quantile(0.99);
        state.counters["p99.9"] = quantile(0.999);
        state.counters["worst"] = quantile(1.0);
    }

private:
    std::vector<double> microseconds;
};

/// Microseconds of a block, warmed up by a whole response: "p50" to "worst", and "place", see above; "residueDb":
/// of the fast path against the plain one.
void longestReverb(benchmark::State& state, RenderPath path) {
    const auto blockSize = static_cast<std::uint64_t>(state.range(0));
    if (path == RenderPath::fast) {
        const float left = residue(blockSize);
        if (!(left < residueLimit))
            state.SkipWithError("the fast path sounds different");
        state.counters["residueDb"] = 20.0 * std::log10(left);
    }
    LongestReverb reverb(path, blockSize);
    for (std::uint64_t frame = 0; frame < responseFrames && path == RenderPath::fast; frame += blockSize) {
        reverb.feed();
        reverb.render();
    }
    CallTimes times;
    const bench::ShareOfRealTime share(state, state.range(0), sampleRate);
    for (auto _ : state) {
        reverb.feed();
        state.SetIterationTime(times.take([&reverb] { reverb.render(); }));
    }
    times.report(state);
}
void eachBlock(benchmark::internal::Benchmark* run) {
    run->Arg(32)->Arg(64)->Arg(128)->Arg(512)->Arg(2048)->UseManualTime();
}
BENCHMARK_CAPTURE(longestReverb, plain, RenderPath::plain)->Apply(eachBlock);
BENCHMARK_CAPTURE(longestReverb, fast, RenderPath::fast)->Apply(eachBlock);

/// A host that sends an eighth of a block per call: the figures are those of a call, of which every eighth renders.
void eighthsOfABlock(benchmark::State& state) {
    const auto blockSize = static_cast<std::uint64_t>(state.range(0));
    LongestReverb reverb(RenderPath::fast, blockSize);
    CallTimes times;
    std::uint64_t call = 0;
    const bench::ShareOfRealTime share(state, state.range(0) / 8, sampleRate);
    for (auto _ : state) {
        const std::uint64_t pending = ++call % 8 * blockSize / 8;
        if (pending == 0)
            reverb.feed();
        state.SetIterationTime(times.take([&reverb, pending] {
            if (pending == 0)
                reverb.render();
            else
                reverb.reverb->workAhead(pending);
        }));
    }
    times.report(state);
}
BENCHMARK(eighthsOfABlock)->Arg(512)->Arg(2048)->UseManualTime();

/// What the program holds of the heap, in bytes.
double heldBytes() {
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

/// The time is that of building a reverb, its file's read included. "alone" and "second": bytes that it holds, and
/// that one beside it holds more.
void builtReverb(benchmark::State& state, RenderPath path) {
    const auto blockSize = static_cast<std::uint64_t>(state.range(0));
    const test::Product product(nullptr, test::fullReverbFolder(), {.path = path});
    { const auto planned = makeReverb(product, blockSize); } // the cache of transforms stays
    const double before = heldBytes();
    const auto first = makeReverb(product, blockSize);
    state.counters["alone"] = heldBytes() - before;
    for (auto _ : state) {
        const double between = heldBytes();
        const auto second = makeReverb(product, blockSize);
        state.counters["second"] = heldBytes() - between;
    }
}
BENCHMARK_CAPTURE(builtReverb, plain, RenderPath::plain)->Arg(32)->Arg(64)->Arg(512);
BENCHMARK_CAPTURE(builtReverb, fast, RenderPath::fast)->Arg(32)->Arg(64)->Arg(512);

} // namespace
