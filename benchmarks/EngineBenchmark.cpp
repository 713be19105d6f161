// SPDX-License-Identifier: GPL-3.0-or-later
// Whole engines and single loudspeakers, as a share of real time: "realtime" 0.05 means a twentieth of one
// core.
#include "EngineRun.h"
#include "Measure.h"
#include "ShareOfRealTime.h"
#include "assembly/EngineRig.h"
#include "assembly/Product.h"
#include "binaural/BinauralComponentFactory.h"
#include "binaural/BinauralProcessor.h"
#include "binaural/ConvolutionFactory.h"
#include "binaural/SpeakerBinauralProcessorBuilder.h"
#include "parameters/core/Scene.h"
#include "room/ReverbFilterFactory.h"
#include "room/SpeakerDirectFilterRenderer.h"
#include "support/FlushDenormals.h"
#include "support/SphericalHead.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include <malloc.h>

namespace {

using bench::sampleRate;

struct Layout {
    const char* shown; ///< In the benchmark's name.
    const char* name;
};
constexpr Layout layouts[]{{"2.0", "2.0 +/-30°"}, {"5.1", "5.1 ITU"}, {"7.1.4", "7.1.4"}, {"9.1.6", "9.1.6"}};

bench::HeadAndRooms& data() {
    static bench::HeadAndRooms shared;
    return shared;
}

/// Once for each choice, as the library calls a benchmark several times.
void checkSound(const bench::EngineChoice& choice) {
    static std::set<std::string> checked;
    if (checked.insert(choice.layout + "/" + choice.scene + "/" + std::to_string(choice.blockSize)).second)
        bench::expectSoundOfPlainPath(choice, data());
}

void wholeEngine(benchmark::State& state, std::string_view scene, const Layout& layout,
                 orvane::RenderPath path) {
    bench::EngineChoice choice{layout.name,
                               std::string(scene),
                               bench::Reverb::ofScene,
                               static_cast<std::uint64_t>(state.range(0)),
                               {}};
    checkSound(choice);
    choice.options.path = path;
    bench::EngineRun run(choice, data());
    const test::FlushDenormals flush;
    const bench::ShareOfRealTime share(state, state.range(0), sampleRate);
    for (auto _ : state)
        run.block();
}

/// What comes in is noise, or so faint that every sample is denormal; with the processor's flags as the plug-in
/// sets them, or without.
void faintInput(benchmark::State& state, float level, bool flushed) {
    bench::EngineRun run(
        {"7.1.4", "Mix Room", bench::Reverb::ofScene, static_cast<std::uint64_t>(state.range(0)), {}},
        data());
    run.scaleInput(level);
    const test::FlushDenormals flush(flushed);
    const bench::ShareOfRealTime share(state, state.range(0), sampleRate);
    for (auto _ : state)
        run.block();
}
BENCHMARK_CAPTURE(faintInput, noise_flushed, 1.0f, true)->Arg(64)->Arg(512);
BENCHMARK_CAPTURE(faintInput, denormals_flushed, 1e-39f, true)->Arg(64)->Arg(512);
BENCHMARK_CAPTURE(faintInput, noise_kept, 1.0f, false)->Arg(64)->Arg(512);
BENCHMARK_CAPTURE(faintInput, denormals_kept, 1e-39f, false)->Arg(64)->Arg(512);

/// What the program holds of the heap, in bytes.
double heldBytes() {
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

/// The time is that of building. "bytes": what the program holds more with the engine than without.
void builtEngine(benchmark::State& state, std::string_view scene, const Layout& layout) {
    const auto blockSize = static_cast<std::uint64_t>(state.range(0));
    test::SphericalHead head(139);
    test::EngineRig rig(&head);
    rig.product.chooseLayout(layout.name);
    rig.product.chooseScene(scene);
    double bytes = 0;
    for (auto _ : state) {
        rig.engine.reset();
        const double before = heldBytes();
        rig.start(blockSize, sampleRate);
        bytes = heldBytes() - before;
    }
    state.counters["bytes"] = bytes;
}

/// Every Scene, layout and block: "wholeEngine/Kitchen/5.1/512". A part is chosen by --benchmark_filter.
const bool registered = [] {
    const std::pair<orvane::RenderPath, std::string> paths[]{{orvane::RenderPath::fast, "wholeEngine"},
                                                             {orvane::RenderPath::plain, "plainEngine"}};
    for (const auto& scene : orvane::kestrum::core::Scene::presets())
        for (const Layout& layout : layouts) {
            const std::string suffix = "/" + std::string(scene.name) + "/" + layout.shown;
            for (const auto& [path, name] : paths)
                benchmark::RegisterBenchmark((name + suffix).c_str(), wholeEngine, scene.name, layout, path)
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
