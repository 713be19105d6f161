// SPDX-License-Identifier: GPL-3.0-or-later
// The convolver and the clarity stage, as a share of real time: "realtime" 0.05 means a twentieth of one
// core, 1.5m 0.15 percent.
#include "ShareOfRealTime.h"
#include "base/SampleBuffer.h"
#include "binaural/ClarityProcessor.h"
#include "binaural/ConvolutionFactory.h"
#include "binaural/RmsSpectrumFactory.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr double sampleRate = 48000.0;

void fillWithNoise(orvane::SampleBuffer& buffer) {
    std::mt19937 generator(1);
    for (std::uint64_t channel = 0; channel < buffer.numChannels; ++channel)
        for (std::uint64_t i = 0; i < buffer.numSamples; ++i)
            buffer.channelPointers[channel][i] = static_cast<float>(generator() >> 8) / 8388608.0f - 1.0f;
}

enum class Replacement { none, same, direct, whole };

/// A number of loudspeakers' convolvers, each with its own input, between two responses that differ as told.
class Loudspeakers {
public:
    Loudspeakers(const orvane::RenderOptions& options, std::uint64_t count, std::uint64_t blockSize,
                 std::uint64_t responseLength, Replacement replacement)
        : update(replacement != Replacement::none),
          oldOutput(2, std::min<std::uint64_t>(blockSize, fadeLength)),
          output(2, blockSize) {
        orvane::ConvolutionFactory factory(options);
        responses.fill(orvane::SampleBuffer(2, responseLength));
        fillWithNoise(responses[0]);
        responses[1] = responses[0];
        const std::uint64_t changed = replacement == Replacement::whole    ? responseLength
                                      : replacement == Replacement::direct ? directLength
                                                                           : 0;
        for (std::uint64_t ear = 0; ear < 2; ++ear)
            for (std::uint64_t i = 0; i < changed; ++i)
                responses[1].channelPointers[ear][i] *= -0.5f;
        for (std::uint64_t i = 0; i < count; ++i) {
            convolvers.push_back(factory.create(sampleRate, blockSize, responseLength / blockSize, 1));
            convolvers.back()->prepare(responses[0]);
            inputs.emplace_back(1, blockSize);
            fillWithNoise(inputs.back());
        }
    }

    void process() {
        present = 1 - present;
        for (std::size_t i = 0; i < convolvers.size(); ++i) {
            convolvers[i]->processCrossfaded(inputs[i].channel(0), oldOutput, output, responses[present],
                                             update);
            benchmark::DoNotOptimize(output.channelPointers[0][0]);
        }
    }

    /// Of a few blocks' outputs, the old ones included.
    std::uint64_t fingerprint() {
        std::uint64_t hash = 0xcbf29ce484222325;
        for (int block = 0; block < 5; ++block) {
            process();
            for (const orvane::SampleBuffer* const buffer : {&oldOutput, &output})
                for (std::uint64_t ear = 0; ear < 2; ++ear)
                    for (const float sample : buffer->channel(ear))
                        hash = (hash ^ std::bit_cast<std::uint32_t>(sample)) * 0x100000001b3;
        }
        return hash;
    }

private:
    static constexpr std::uint64_t fadeLength = 64;
    static constexpr std::uint64_t directLength = 139; ///< That of a head-related response.

    bool update;
    std::size_t present = 0;
    std::array<orvane::SampleBuffer, 2> responses;
    std::vector<std::unique_ptr<orvane::IConvolution>> convolvers;
    std::vector<orvane::SampleBuffer> inputs;
    orvane::SampleBuffer oldOutput;
    orvane::SampleBuffer output;
};

/// Arguments: loudspeakers, block size, response length in samples. A path whose output is not that of the plain
/// one fails.
void convolver(benchmark::State& state, orvane::RenderPath path, Replacement replacement) {
    const auto count = static_cast<std::uint64_t>(state.range(0));
    const auto blockSize = static_cast<std::uint64_t>(state.range(1));
    const auto length = static_cast<std::uint64_t>(state.range(2));
    const auto make = [&](orvane::RenderPath wanted) {
        return Loudspeakers({.path = wanted}, count, blockSize, length, replacement);
    };
    Loudspeakers loudspeakers = make(path);
    if (loudspeakers.fingerprint() != make(orvane::RenderPath::plain).fingerprint()) {
        state.SkipWithError("the output differs from that of the plain path");
        return;
    }
    const bench::ShareOfRealTime share(state, state.range(1), sampleRate);
    for (auto _ : state)
        loudspeakers.process();
}

void convolverArguments(benchmark::internal::Benchmark* run) {
    run->ArgNames({"loudspeakers", "N", "length"});
    run->ArgsProduct({{1}, {32, 64, 128, 512}, {2229, 4458, 8917}});
    run->ArgsProduct({{16}, {32, 64, 512}, {4458}});
}
constexpr auto plain = orvane::RenderPath::plain;
constexpr auto fast = orvane::RenderPath::fast;
BENCHMARK_CAPTURE(convolver, plain_still, plain, Replacement::none)->Apply(convolverArguments);
BENCHMARK_CAPTURE(convolver, fast_still, fast, Replacement::none)->Apply(convolverArguments);
BENCHMARK_CAPTURE(convolver, plain_same, plain, Replacement::same)->Apply(convolverArguments);
BENCHMARK_CAPTURE(convolver, fast_same, fast, Replacement::same)->Apply(convolverArguments);
BENCHMARK_CAPTURE(convolver, plain_direct, plain, Replacement::direct)->Apply(convolverArguments);
BENCHMARK_CAPTURE(convolver, fast_direct, fast, Replacement::direct)->Apply(convolverArguments);
BENCHMARK_CAPTURE(convolver, plain_whole, plain, Replacement::whole)->Apply(convolverArguments);
BENCHMARK_CAPTURE(convolver, fast_whole, fast, Replacement::whole)->Apply(convolverArguments);

/// Arguments: HRIR length, block size. One response per block is the worst that a moving head can ask for.
void clarity(benchmark::State& state) {
    const auto length = static_cast<std::uint64_t>(state.range(0));
    const float amount = 0.5f;
    orvane::RmsSpectrumFactory factory;
    orvane::ClarityProcessor processor(length, &amount, &factory);
    orvane::SampleBuffer original(2, 2 * length);
    orvane::SampleBuffer response(2, 2 * length);
    fillWithNoise(original);
    const bench::ShareOfRealTime share(state, state.range(1), sampleRate);
    for (auto _ : state) {
        response.copyFrom(original); // the stage works in place and would whiten its own result
        processor.process(response);
        benchmark::DoNotOptimize(response.channelPointers[0][0]);
    }
}
BENCHMARK(clarity)->ArgsProduct({{128, 139}, {64, 512}});

} // namespace
