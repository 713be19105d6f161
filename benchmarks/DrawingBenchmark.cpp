// SPDX-License-Identifier: GPL-3.0-or-later
// What a loudspeaker's response costs: one that stays, one that is drawn, one that follows a turning head. Each
// on both paths, whose outputs have to be equal in every bit.
#include "ShareOfRealTime.h"
#include "assembly/Product.h"
#include "base/IHrir.h"
#include "base/SampleBuffer.h"
#include "binaural/BinauralComponentFactory.h"
#include "binaural/BinauralProcessor.h"
#include "binaural/ClarifiedHrir.h"
#include "binaural/ConvolutionFactory.h"
#include "binaural/IConvolutionFactory.h"
#include "binaural/SpeakerBinauralProcessorBuilder.h"
#include "parameters/core/EngineParameterView.h"
#include "parameters/core/SpeakerViewSnapshot.h"
#include "support/NoiseHead.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using orvane::RenderPath;
using orvane::SampleBuffer;

constexpr double sampleRate = 48000.0;
constexpr std::uint64_t headLength = 139;

/// Noise on the real store's grid, worked out beforehand: asking costs a copy, as it does there.
class StoredHead final : public orvane::IHrir {
public:
    StoredHead() {
        const test::NoiseHead noise(headLength);
        for (std::int32_t cellNumber = 0; cellNumber < 73 * 37; ++cellNumber) {
            responses.emplace_back(2, headLength);
            noise.getResponse(responses.back(), cellNumber / 37, cellNumber % 37, false);
        }
    }

    void load(std::int32_t /*sampleRate*/, const std::string& /*dataDirectory*/) override {}
    std::int32_t bandLimitFactor() const noexcept override { return 1; }
    std::uint64_t length() const noexcept override { return headLength; }
    std::uint64_t generation() const noexcept override { return present; }
    std::uint32_t cell(std::int32_t azimuthDegrees, std::int32_t elevationDegrees) const noexcept override {
        const std::int32_t a = (std::clamp(azimuthDegrees, -180, 180) + 180) / 5;
        const std::int32_t e = (std::clamp(elevationDegrees, -90, 90) + 90) / 5;
        return static_cast<std::uint32_t>(a * 37 + e);
    }
    std::uint64_t getResponse(SampleBuffer& out, std::int32_t azimuthDegrees, std::int32_t elevationDegrees,
                              bool /*simple*/) const noexcept override {
        out.copyFrom(responses[cell(azimuthDegrees, elevationDegrees)]);
        return present;
    }

    void forgetTables() { present = orvane::newHrirGeneration(); } ///< What tables know is of another set.

private:
    std::vector<SampleBuffer> responses;
    std::uint64_t present = orvane::newHrirGeneration();
};

/// Convolves nothing, so that what is measured is all the rest.
class NoConvolution final : public orvane::IConvolution {
public:
    void process(orvane::SampleSpan, SampleBuffer&, const SampleBuffer&, bool) override {}
    void processCrossfaded(orvane::SampleSpan, SampleBuffer&, SampleBuffer&, const SampleBuffer&,
                           bool) override {}
    void prepare(const SampleBuffer&) override {}
    void workAhead(std::uint64_t) override {}
    float outputGain() const noexcept override { return 1; }
};
struct NoConvolutionFactory final : orvane::IConvolutionFactory {
    std::unique_ptr<orvane::IConvolution> create(double, std::uint64_t, std::uint64_t,
                                                 std::int32_t) override {
        return std::make_unique<NoConvolution>();
    }
};

/// A loudspeaker of an engine, with or without its convolution.
class Loudspeaker {
public:
    Loudspeaker(StoredHead& head, const std::string& scene, std::uint64_t blockSize, RenderPath path,
                bool convolves)
        : product(&head, test::reverbFolder(), {.path = path}),
          input(1, blockSize),
          output(2, blockSize),
          engineView(product.parameterSet.get()) {
        using namespace orvane::kestrum::core;
        product.chooseScene(scene);
        product.updateMappers();
        view =
            product.factory.createSpeakerParameterSetView(orvane::SpatialPosition(0, -30, 1.5f), &engineView);
        auto reloadSet = product.parameterSet->createReloadParameterSet();
        std::fill_n(input.channelPointers[0], blockSize, 0.1f);
        if (convolves) {
            processor = product.factory.createBinauralProcessor(sampleRate, blockSize, &head, view.get(),
                                                                std::move(reloadSet));
            return;
        }
        const orvane::RenderOptions options{.path = path};
        std::unique_ptr<SpeakerViewSnapshot> snapshot;
        ISpeakerParameterSetView* seen = view.get();
        if (path == RenderPath::fast) {
            orvane::ClarifiedHrir(&head, false, orvane::BinauralComponentFactory(options))
                .fill(view->getClarity());
            snapshot = std::make_unique<SpeakerViewSnapshot>(view.get(), &head);
            seen = snapshot.get();
        }
        const BinauralProcessorBuilder builder(
            static_cast<float>(sampleRate), blockSize, seen, std::move(reloadSet),
            std::make_unique<orvane::BinauralComponentFactory>(options),
            std::make_unique<NoConvolutionFactory>(), &head, &product.factory);
        processor = std::make_unique<orvane::BinauralProcessor>(blockSize, false, seen, builder, path,
                                                                std::move(snapshot));
    }

    void turn(float degrees) const {
        const float azimuth = product.headRotation->getValue() + degrees;
        product.headRotation->setValue(azimuth > 180.0f ? azimuth - 360.0f : azimuth);
    }
    void process() { processor->process(input, output); }

    test::Product product;
    SampleBuffer input;
    SampleBuffer output;

private:
    orvane::kestrum::core::EngineParameterView engineView;
    std::unique_ptr<orvane::kestrum::core::ISpeakerParameterSetView> view;
    std::unique_ptr<orvane::ISpatialProcessor> processor;
};

/// Whether both paths give the same bits over some blocks.
bool pathsAgree(StoredHead& head, const std::string& scene, std::uint64_t blockSize, float degrees) {
    Loudspeaker plain(head, scene, blockSize, RenderPath::plain, true);
    Loudspeaker fast(head, scene, blockSize, RenderPath::fast, true);
    for (int block = 0; block < 100; ++block) {
        for (Loudspeaker* const speaker : {&plain, &fast}) {
            speaker->turn(degrees);
            speaker->process();
        }
        for (std::uint64_t ear = 0; ear < 2; ++ear)
            if (std::memcmp(plain.output.channelPointers[ear], fast.output.channelPointers[ear],
                            blockSize * sizeof(float)) != 0)
                return false;
    }
    return true;
}

struct Case {
    const char* name;
    const char* scene;
    float degreesPerSecond;
    bool convolves;
};
constexpr Case cases[]{
    {"oneLoudspeaker/still", "Mix Room", 0, true},
    {"oneLoudspeaker/turning90", "Mix Room", 90, true},
    {"oneLoudspeaker/turning360", "Mix Room", 360, true},
    {"drawing/still", "Mix Room", 0, false},
    {"drawing/stillCustomRoom", "Stadium", 0, false},
    {"drawing/turning90", "Mix Room", 90, false},
    {"drawing/turning360", "Mix Room", 360, false},
    {"drawing/turning90CustomRoom", "Stadium", 90, false},
    {"drawing/everyBlockAllCells", "Mix Room", 5.0f * 750, false}, // a cell a block, of 64 samples
};

void loudspeaker(benchmark::State& state, const Case& given, RenderPath path) {
    const auto blockSize = static_cast<std::uint64_t>(state.range(0));
    static StoredHead head;
    const float degrees =
        given.degreesPerSecond * static_cast<float>(static_cast<double>(blockSize) / sampleRate);
    if (!pathsAgree(head, given.scene, blockSize, degrees)) {
        state.SkipWithError("the paths differ");
        return;
    }
    Loudspeaker speaker(head, given.scene, blockSize, path, given.convolves);
    speaker.process();
    const bench::ShareOfRealTime share(state, state.range(0), sampleRate);
    for (auto _ : state) {
        if (degrees != 0.0f)
            speaker.turn(degrees);
        speaker.process();
    }
}

const bool registered = [] {
    for (const Case& given : cases)
        for (const auto& [name, path] : {std::pair{"plain", RenderPath::plain}, {"fast", RenderPath::fast}})
            benchmark::RegisterBenchmark((std::string(given.name) + "/" + name).c_str(), loudspeaker, given,
                                         path)
                ->Arg(64)
                ->Arg(512);
    return true;
}();

/// One direction behind the clarity stage: worked out, or copied from the table.
void clarified(benchmark::State& state, RenderPath path, std::uint64_t samples) {
    static StoredHead head;
    orvane::ClarifiedHrir response(&head, false, orvane::BinauralComponentFactory({.path = path}));
    response.fill(0.65f);
    SampleBuffer buffer(2, samples);
    std::int32_t azimuth = 0;
    for (auto _ : state) {
        azimuth = (azimuth + 35) % 180;
        response.get(buffer, azimuth, 0, 0.65f);
        benchmark::DoNotOptimize(buffer.channelPointers[0][0]);
    }
}
BENCHMARK_CAPTURE(clarified, computed, RenderPath::plain, 2 * headLength);
BENCHMARK_CAPTURE(clarified, foundForDirectSound, RenderPath::fast, 2 * headLength);
BENCHMARK_CAPTURE(clarified, foundForReflection, RenderPath::fast, headLength);

/// The whole grid, for a set that is new (cold) or known. "bytes": the table's.
void filledTable(benchmark::State& state, bool cold) {
    StoredHead head;
    orvane::ClarifiedHrir response(&head, false, orvane::BinauralComponentFactory());
    response.fill(0.65f);
    for (auto _ : state) {
        if (cold)
            head.forgetTables();
        response.fill(0.65f);
    }
    state.counters["bytes"] = static_cast<double>(orvane::ClarityTable::forLength(headLength)->bytes());
}
BENCHMARK_CAPTURE(filledTable, cold, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(filledTable, known, false)->Unit(benchmark::kMillisecond);

} // namespace
