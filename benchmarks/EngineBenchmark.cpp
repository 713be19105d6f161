// SPDX-License-Identifier: GPL-3.0-or-later
// Whole engines and single loudspeakers, as a share of real time: "realtime" 0.05 means a twentieth of one
// core.
#include "ShareOfRealTime.h"
#include "assembly/Product.h"
#include "binaural/BinauralComponentFactory.h"
#include "binaural/BinauralProcessor.h"
#include "binaural/ConvolutionFactory.h"
#include "binaural/SpeakerBinauralProcessorBuilder.h"
#include "engine/assembly/EngineBuilder.h"
#include "engine/assembly/EngineFactory.h"
#include "parameters/core/Scene.h"
#include "room/ReverbFilterFactory.h"
#include "room/SpeakerDirectFilterRenderer.h"
#include "support/SphericalHead.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <malloc.h>

namespace {

constexpr double sampleRate = 48000.0;

struct Layout {
    const char* shown; ///< In the benchmark's name.
    const char* name;
};
constexpr Layout layouts[]{{"2.0", "2.0 +/-30°"}, {"5.1", "5.1 ITU"}, {"7.1.4", "7.1.4"}, {"9.1.6", "9.1.6"}};

void wholeEngine(benchmark::State& state, std::string_view scene, const Layout& layout) {
    const auto blockSize = static_cast<std::uint64_t>(state.range(0));
    test::SphericalHead head(139);
    test::Product product(&head);
    product.chooseLayout(layout.name);
    product.chooseScene(scene);
    product.prepare(blockSize, sampleRate);
    std::vector<std::vector<float>> bus(16, std::vector<float>(blockSize, 0.1f));
    const std::vector<float*> pointers = test::channelPointers(bus);
    const orvane::SampleBuffer input(pointers.data(), 16, blockSize);
    orvane::SampleBuffer output(2, blockSize);
    const bench::ShareOfRealTime share(state, state.range(0), sampleRate);
    for (auto _ : state)
        product.manager->process(input, output);
}

/// What the program holds of the heap, in bytes.
double heldBytes() {
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

/// The time is that of building. "bytes": what the program holds more with the engine than without.
void builtEngine(benchmark::State& state, std::string_view scene, const Layout& layout) {
    const auto blockSize = static_cast<std::uint64_t>(state.range(0));
    test::SphericalHead head(139);
    test::Product product(&head);
    product.chooseLayout(layout.name);
    product.chooseScene(scene);
    product.updateMappers();
    orvane::kestrum::core::EngineFactory factory(
        product.speakerSetup.get(), product.layouts.get(), &product.factory, product.parameterSet.get(),
        &head, test::reverbFolder(), std::make_unique<orvane::kestrum::core::EngineBuilder>(),
        std::make_unique<orvane::ReverbFilterFactory>(), [] {});
    double bytes = 0;
    for (auto _ : state) {
        const double before = heldBytes();
        const auto engine = factory.createEngine(blockSize, sampleRate);
        bytes = heldBytes() - before;
    }
    state.counters["bytes"] = bytes;
}

/// Every Scene, layout and block: "wholeEngine/Kitchen/5.1/512". A part is chosen by --benchmark_filter.
const bool registered = [] {
    for (const auto& scene : orvane::kestrum::core::Scene::presets())
        for (const Layout& layout : layouts) {
            const std::string suffix = "/" + std::string(scene.name) + "/" + layout.shown;
            benchmark::RegisterBenchmark(("wholeEngine" + suffix).c_str(), wholeEngine, scene.name, layout)
                ->Arg(64)
                ->Arg(128)
                ->Arg(512);
            benchmark::RegisterBenchmark(("builtEngine" + suffix).c_str(), builtEngine, scene.name, layout)
                ->Arg(64)
                ->Arg(512);
        }
    return true;
}();

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
