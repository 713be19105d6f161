// SPDX-License-Identifier: GPL-3.0-or-later
// Whole engines and single loudspeakers, as a share of real time: "realtime" 0.05 means a twentieth of one
// core.
#include "ShareOfRealTime.h"
#include "assembly/Product.h"
#include "binaural/BinauralComponentFactory.h"
#include "binaural/BinauralProcessor.h"
#include "binaural/ConvolutionFactory.h"
#include "binaural/SpeakerBinauralProcessorBuilder.h"
#include "room/SpeakerDirectFilterRenderer.h"
#include "support/SphericalHead.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace {

constexpr double sampleRate = 48000.0;

void wholeEngine(benchmark::State& state, const char* layout) {
    const auto blockSize = static_cast<std::uint64_t>(state.range(0));
    test::SphericalHead head(139);
    test::Product product(&head);
    product.chooseLayout(layout);
    product.prepare(blockSize, sampleRate);
    std::vector<std::vector<float>> bus(16, std::vector<float>(blockSize, 0.1f));
    const std::vector<float*> pointers = test::channelPointers(bus);
    const orvane::SampleBuffer input(pointers.data(), 16, blockSize);
    orvane::SampleBuffer output(2, blockSize);
    const bench::ShareOfRealTime share(state, state.range(0), sampleRate);
    for (auto _ : state)
        product.manager->process(input, output);
}
BENCHMARK_CAPTURE(wholeEngine, 2.0, "2.0 +/-30°")->Arg(64)->Arg(128)->Arg(512);
BENCHMARK_CAPTURE(wholeEngine, 5.1, "5.1 ITU")->Arg(64)->Arg(128)->Arg(512);
BENCHMARK_CAPTURE(wholeEngine, 7.1.4, "7.1.4")->Arg(64)->Arg(128)->Arg(512);
BENCHMARK_CAPTURE(wholeEngine, 9.1.6, "9.1.6")->Arg(64)->Arg(128)->Arg(512);

void oneLoudspeaker(benchmark::State& state) {
    const auto blockSize = static_cast<std::uint64_t>(state.range(0));
    test::SphericalHead head(139);
    test::Product product(&head);
    const auto speaker = product.factory.createSpeakerProcessor(
        orvane::SpatialPosition(0, -30, 1.5f), product.parameterSet.get(), sampleRate, blockSize, &head);
    orvane::SampleBuffer input(1, blockSize);
    orvane::SampleBuffer output(2, blockSize);
    const bench::ShareOfRealTime share(state, state.range(0), sampleRate);
    for (auto _ : state)
        speaker->process(input, output);
}
BENCHMARK(oneLoudspeaker)->Arg(64)->Arg(128)->Arg(512);

void drawnResponse(benchmark::State& state) {
    test::SphericalHead head(139);
    test::Product product(&head);
    const orvane::BinauralComponentFactory factory;
    orvane::kestrum::core::DirectFilterRenderer renderer(product.parameterSet.get(), &head, false, factory);
    orvane::SampleBuffer response(2, 4096);
    for (auto _ : state)
        renderer.process(response);
}
BENCHMARK(drawnResponse);

} // namespace
