// SPDX-License-Identifier: GPL-3.0-or-later
#include "assembly/Product.h"
#include "engine/assembly/EngineBuilder.h"
#include "engine/assembly/EngineFactory.h"
#include "room/ReverbFilterFactory.h"
#include "support/ReverbFiles.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace {

using orvane::RenderPath;
using test::Product;
using test::Signal;

constexpr std::uint64_t blockSize = 512;
constexpr std::uint64_t blocksEach = 12;

/// One Scene, then the next one in a crossfaded engine that is built while the parameters still hold the first.
Signal switched(RenderPath path, std::string_view from, std::string_view to) {
    Product product(nullptr, test::fullReverbFolder(), {.path = path});
    product.chooseScene(from);
    product.updateMappers();
    orvane::kestrum::core::EngineFactory factory(
        product.speakerSetup.get(), product.layouts.get(), &product.factory, product.parameterSet.get(),
        product.hrir, test::fullReverbFolder(), std::make_unique<orvane::kestrum::core::EngineBuilder>(),
        std::make_unique<orvane::ReverbFilterFactory>(), [&product] { product.updateMappers(); });
    Signal noise = test::noise(2 * 2 * blocksEach * blockSize, test::Seed{9});
    Signal heard;
    orvane::SampleBuffer output(2, blockSize);
    std::uint64_t position = 0;
    const auto play = [&](orvane::IEngine& engine) {
        for (std::uint64_t block = 0; block < blocksEach; ++block, position += 2 * blockSize) {
            float* const channels[]{noise.data() + position, noise.data() + position + blockSize};
            engine.process(orvane::SampleBuffer(channels, 2, blockSize), output);
            for (std::uint64_t ear = 0; ear < 2; ++ear)
                heard.insert(heard.end(), output.channel(ear).begin(), output.channel(ear).end());
        }
    };
    const std::shared_ptr<orvane::IEngine> first = factory.createEngine(blockSize, 48000.0);
    play(*first);
    product.chooseScene(to);
    const auto second = factory.createCrossfadedEngine(first, blockSize, 48000.0);
    play(*second);
    return heard;
}

struct Pair {
    std::string_view from;
    std::string_view to;
};

class SwitchedScenes : public ::testing::TestWithParam<Pair> {};

/// Null test: rooms of up to 64 partitions, which are convolved bit for bit alike. From "Cinema" the decay of
/// "Home Theater", another Scene of the same room, is expected wrongly; that of "Kitchen" rightly.
TEST_P(SwitchedScenes, SoundOnTheFastPathAsOnThePlainOneToTheLastBit) {
    const auto [from, to] = GetParam();
    const Signal fast = switched(RenderPath::fast, from, to);
    EXPECT_EQ(fast, switched(RenderPath::plain, from, to));
    EXPECT_GT(test::peak(fast), 0.01f);
}
INSTANTIATE_TEST_SUITE_P(WithRightAndWrongExpectationsAndWithoutReverb, SwitchedScenes,
                         ::testing::Values(Pair{"Cinema", "Home Theater"}, Pair{"Home Theater", "Cinema"},
                                           Pair{"Cinema", "Kitchen"}, Pair{"Kitchen", "Home Theater"},
                                           Pair{"Car", "Analytic Dry"}, Pair{"Analytic Dry", "Van"},
                                           Pair{"Kitchen", "Kitchen"}));

} // namespace
