// SPDX-License-Identifier: GPL-3.0-or-later
// What is drawn again and what is not, and that it makes no difference to a single bit.
#include "assembly/Product.h"
#include "base/ISpatialProcessor.h"
#include "base/SampleBuffer.h"
#include "parameters/core/ISpeakerParameterSetView.h"
#include "support/GridHead.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <ostream>
#include <random>
#include <vector>

namespace {

using orvane::SampleBuffer;

struct Setting {
    double rate;
    std::uint64_t headLength;
    std::uint64_t blockSize;
    const char* scene; ///< Of these Stadium has walls of its own and Analytic Dry no reflections.
};

std::ostream& operator<<(std::ostream& stream, const Setting& setting) {
    return stream << setting.scene << " at " << setting.rate << " Hz in blocks of " << setting.blockSize;
}

constexpr orvane::RenderOptions plain{orvane::RenderPath::plain, orvane::InstructionSet::scalar};

/// One loudspeaker of a product.
struct Loudspeaker {
    Loudspeaker(test::GridHead& head, const Setting& setting, const orvane::RenderOptions& options)
        : product(&head, test::reverbFolder(), options), output(2, setting.blockSize) {
        product.chooseScene(setting.scene);
        product.updateMappers();
        processor = product.factory.createSpeakerProcessor(orvane::SpatialPosition(10, -37, 1.5f),
                                                           product.parameterSet.get(), setting.rate,
                                                           setting.blockSize, &head);
    }

    void process(const SampleBuffer& input) { processor->process(input, output); }

    test::Product product;
    std::unique_ptr<orvane::ISpatialProcessor> processor;
    SampleBuffer output;
};

bool sameBits(const SampleBuffer& a, const SampleBuffer& b) {
    for (std::uint64_t channel = 0; channel < a.numChannels; ++channel)
        if (std::memcmp(a.channelPointers[channel], b.channelPointers[channel],
                        a.numSamples * sizeof(float)) != 0)
            return false;
    return true;
}

/// One move of a random script, the same for every loudspeaker that plays it.
class Script {
public:
    explicit Script(std::uint32_t seed) : engine(seed) {}

    template <typename Apply>
    void next(Apply apply) {
        const int move = std::uniform_int_distribution<>(0, 14)(engine);
        const float value = std::uniform_real_distribution<float>(0.0f, 1.0f)(engine);
        apply([&](const test::Product& product) { make(move, value, product); });
    }

private:
    static void make(int move, float value, const test::Product& product) {
        orvane::kestrum::core::IParameterSet& set = *product.parameterSet;
        switch (move) {
        case 0:
            return set.setDirectGainDb(6.0f * value - 3.0f, false);
        case 1:
            return set.setReflectionGainDb(6.0f * value - 3.0f, false);
        case 2:
            return set.setReflectionLowPassFrequency(2000.0f + 16000.0f * value, false);
        case 3:
            return set.setReflectionHighPassFrequency(400.0f * value, false);
        case 4:
            return product.focus->setValue(100.0f * static_cast<float>(static_cast<int>(4 * value)) - 200.0f);
        case 5:
            return set.setDistance(0.5f + 20.0f * value, false);
        case 6:
            return set.setAzimuthExponent(0.5f + value, false);
        case 7:
            return set.setLeftDistance(12.0f * value, false);
        case 8:
            return set.setFrontDistance(12.0f * value, false);
        case 9:
            return set.setCeilingDistance(4.0f * value, false);
        case 10:
        case 11:
        case 12: // a head that turns
            return product.headRotation->setValue(product.headRotation->getValue() + 12.0f * value - 4.0f);
        default:
            return; // nothing moves
        }
    }

    std::mt19937 engine;
};

class LoudspeakerScript : public ::testing::TestWithParam<Setting> {};

/// Null test against the plain path over a random script of parameter moves, head turns and replaced heads.
TEST_P(LoudspeakerScript, SoundsTheSameInEveryBitWhetherOrNotEverythingIsDrawn) {
    const Setting& setting = GetParam();
    test::GridHead head(setting.headLength);
    Loudspeaker expected(head, setting, plain);
    Loudspeaker actual(head, setting, {});
    Script script(7);
    const auto noise = test::noise(400 * setting.blockSize, test::Seed{3});
    SampleBuffer input(1, setting.blockSize);
    const std::uint64_t blocks = std::clamp<std::uint64_t>(60000 / setting.blockSize, 60, 400);
    for (std::uint64_t block = 0; block < blocks; ++block) {
        script.next([&](const auto& move) {
            move(expected.product);
            move(actual.product);
        });
        if (block % 50 == 49)
            head.replace();
        std::copy_n(noise.data() + block * setting.blockSize, setting.blockSize, input.channelPointers[0]);
        expected.process(input);
        actual.process(input);
        ASSERT_TRUE(sameBits(expected.output, actual.output)) << "block " << block;
    }
    EXPECT_GT(test::peak({expected.output.channelPointers[0],
                          expected.output.channelPointers[0] + setting.blockSize}),
              0.0f);
}
INSTANTIATE_TEST_SUITE_P(
    RatesBlocksAndRooms, LoudspeakerScript,
    ::testing::Values(Setting{44100, 128, 64, "Mix Room"}, Setting{48000, 139, 64, "Mix Room"},
                      Setting{48000, 139, 512, "Stadium"}, Setting{48000, 139, 32, "Kitchen"},
                      Setting{48000, 139, 441, "Club"}, Setting{48000, 139, 2048, "Analytic Dry"},
                      Setting{24000, 70, 128, "Stadium"}, Setting{88200, 256, 513, "Car"},
                      Setting{96000, 278, 128, "Stadium"}, Setting{176400, 512, 480, "Living Room"},
                      Setting{192000, 556, 1009, "Stadium"}));

/// A loudspeaker that nothing happens to asks its store for nothing.
TEST(UnchangedLoudspeaker, IsDrawnOnce) {
    const Setting setting{48000, 139, 64, "Mix Room"};
    test::GridHead head(setting.headLength);
    Loudspeaker speaker(head, setting, {});
    speaker.product.headRotation->setValue(1.0f);
    const SampleBuffer input(1, 64);
    speaker.process(input);
    const std::uint64_t asked = head.asked;
    for (int block = 0; block < 10; ++block)
        speaker.process(input);
    EXPECT_EQ(head.asked, asked);
}

} // namespace
