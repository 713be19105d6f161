// SPDX-License-Identifier: GPL-3.0-or-later
// The convolver and the clarity stage, as a share of real time: "realtime" 0.05 means a twentieth of one
// core, 1.5m 0.15 percent.
#include "ShareOfRealTime.h"
#include "base/SampleBuffer.h"
#include "binaural/ClarityProcessor.h"
#include "binaural/ConvolutionFactory.h"
#include "binaural/RmsSpectrumFactory.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>

namespace {

constexpr double sampleRate = 48000.0;

void fillWithNoise(orvane::SampleBuffer& buffer) {
    std::mt19937 generator(1);
    for (std::uint64_t channel = 0; channel < buffer.numChannels; ++channel)
        for (std::uint64_t i = 0; i < buffer.numSamples; ++i)
            buffer.channelPointers[channel][i] = static_cast<float>(generator() >> 8) / 8388608.0f - 1.0f;
}

enum class Replacement { none, hard, crossfaded };

/// Arguments: block size, response length in samples.
void convolver(benchmark::State& state, Replacement replacement) {
    const auto blockSize = static_cast<std::uint64_t>(state.range(0));
    const auto responseLength = static_cast<std::uint64_t>(state.range(1));
    const auto convolution =
        orvane::ConvolutionFactory().create(sampleRate, blockSize, responseLength / blockSize, 1);
    orvane::SampleBuffer response(2, responseLength);
    orvane::SampleBuffer input(1, blockSize);
    orvane::SampleBuffer oldOutput(2, blockSize);
    orvane::SampleBuffer output(2, blockSize);
    fillWithNoise(response);
    fillWithNoise(input);
    convolution->process(input.channel(0), output, response, true);
    const bench::ShareOfRealTime share(state, state.range(0), sampleRate);
    for (auto _ : state) {
        if (replacement == Replacement::crossfaded)
            convolution->processCrossfaded(input.channel(0), oldOutput, output, response, true);
        else
            convolution->process(input.channel(0), output, response, replacement == Replacement::hard);
        benchmark::DoNotOptimize(output.channelPointers[0][0]);
    }
}
BENCHMARK_CAPTURE(convolver, still, Replacement::none)->ArgsProduct({{64, 128, 512}, {2048, 4096, 8192}});
BENCHMARK_CAPTURE(convolver, replaced, Replacement::hard)->ArgsProduct({{64, 128, 512}, {2048, 4096, 8192}});
BENCHMARK_CAPTURE(convolver, crossfaded, Replacement::crossfaded)
    ->ArgsProduct({{64, 128, 512}, {2048, 4096, 8192}});

/// Arguments: HRIR length, block size. One response per block is the worst that a moving head can ask for.
void clarity(benchmark::State& state) {
    const auto length = static_cast<std::uint64_t>(state.range(0));
    const float amount = 0.5f;
    orvane::RmsSpectrumFactory factory;
    orvane::ClarityProcessor processor(length, &amount, &factory);
    orvane::SampleBuffer original(2, 2 * length);
    orvane::SampleBuffer response(2, 2 * length);
    fillWithNoise(original);
    const ShareOfRealTime share(state, state.range(1));
    for (auto _ : state) {
        response.copyFrom(original); // the stage works in place and would whiten its own result
        processor.process(response);
        benchmark::DoNotOptimize(response.channelPointers[0][0]);
    }
}
BENCHMARK(clarity)->ArgsProduct({{128, 139}, {64, 512}});

} // namespace
