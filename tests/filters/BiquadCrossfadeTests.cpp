// SPDX-License-Identifier: GPL-3.0-or-later
#include "filters/BiquadCrossfade.h"
#include "filters/BiquadFilter.h"
#include "filters/BiquadFilterFactory.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>

namespace {

using orvane::BiquadCrossfade;
using test::Signal;

/// A filter whose output is 0 and that counts the samples it was run over: with an input of 1, what is heard
/// is the dry signal's share.
class Mute final : public orvane::IBiquadFilter {
public:
    explicit Mute(std::uint64_t* samples) : seen(samples) {}
    void setFrequency(float) override {}
    void setQ(float) override {}
    void process(const float*, float*, std::uint64_t, float) override {}
    void processInPlace(float* buffer, std::uint64_t count, float gain) override {
        std::fill_n(buffer, count, 0.0f);
        *seen += gain == 1.0f ? count : 1000000;
    }
    void processInPlaceFading(float*, std::uint64_t, std::uint64_t, float) override {}
    void processAdd(const float*, float*, std::uint64_t, float) override {}
    void processAddFading(const float*, float*, std::uint64_t, std::uint64_t, float) override {}
    void reset() override {}

private:
    std::uint64_t* seen;
};

/// Blocks of 48 samples at 48000 Hz, a fade of 10 ms: 480 samples, ten blocks.
class TenMilliseconds : public ::testing::Test {
protected:
    Signal dryShares(bool engaged) {
        Signal block(48, 1.0f);
        fade.apply(block.data(), block.size(), engaged);
        return block;
    }

    std::uint64_t filtered = 0;
    BiquadCrossfade fade{std::make_unique<Mute>(&filtered), 48, 48000.0f, 10.0f, 0.0f};
};

// Expected values: the straight line from 1 to 0 over 480 samples; 480 roundings of a sum near 1 stay below.
constexpr float sumOfRoundings = 480 * 6e-8f;

TEST_F(TenMilliseconds, GoesFromDryToWetIn480SamplesAndBackTheSameWay) {
    for (std::size_t block = 0; block < 10; ++block) {
        const Signal shares = dryShares(true);
        for (std::size_t i = 0; i < 48; ++i) {
            const float expected = 1.0f - static_cast<float>(block * 48 + i + 1) / 480.0f;
            ASSERT_NEAR(shares[i], expected, sumOfRoundings) << block << " " << i;
        }
    }
    EXPECT_THAT(dryShares(true), test::Silence()) << "wholly filtered";
    for (std::size_t block = 0; block < 10; ++block) {
        const Signal shares = dryShares(false);
        for (std::size_t i = 0; i < 48; ++i) {
            const float expected = static_cast<float>(block * 48 + i + 1) / 480.0f;
            ASSERT_NEAR(shares[i], expected, 2 * sumOfRoundings + 1.0f / 480.0f) << block << " " << i;
        }
    }
    EXPECT_EQ(dryShares(false), Signal(48, 1.0f)) << "wholly dry";
}

TEST_F(TenMilliseconds, DoesNotRunTheFilterWhileItIsOut) {
    EXPECT_EQ(dryShares(false), Signal(48, 1.0f));
    EXPECT_EQ(filtered, 0u);
    dryShares(true);
    EXPECT_EQ(filtered, 48u);
}

TEST_F(TenMilliseconds, TurnsAroundMidwayWithoutAJump) {
    for (int block = 0; block < 5; ++block)
        dryShares(true);
    const float reached = dryShares(true).back();
    const Signal back = dryShares(false);
    EXPECT_NEAR(back.front() - reached, 1.0f / 480.0f, 1e-6f); // one step of the ramp
}

TEST(BiquadCrossfade, StartsWhereItIsTold) {
    std::uint64_t filtered = 0;
    BiquadCrossfade fade(std::make_unique<Mute>(&filtered), 16, 48000.0f, 10.0f, 1.0f);
    Signal block(16, 1.0f);
    fade.apply(block.data(), 16, true);
    EXPECT_THAT(block, test::Silence());
}

TEST(BiquadCrossfade, SwitchesAtOnceWithoutALength) {
    for (const float milliseconds : {0.0f, -5.0f}) {
        std::uint64_t filtered = 0;
        BiquadCrossfade fade(std::make_unique<Mute>(&filtered), 16, 48000.0f, milliseconds, 0.0f);
        Signal block(16, 1.0f);
        fade.apply(block.data(), 16, true);
        EXPECT_THAT(block, test::Silence());
        std::fill(block.begin(), block.end(), 1.0f);
        fade.apply(block.data(), 16, false);
        EXPECT_EQ(block, Signal(16, 1.0f));
    }
}

TEST(BiquadCrossfade, MixesTheFilteredSignalWithTheDryOne) {
    // Null test against the plain shelf and the same line, in the arithmetic of the loop.
    orvane::BiquadFilterFactory factory;
    const auto fade = factory.createCrossfadedLowShelf(48000.0f, 500.0f, 9.0f, 64, 10.0f, 0.0f);
    orvane::LowShelfBiquadFilter shelf(48000.0f, 500.0f, 9.0f);
    const Signal input = test::noise(64, test::Seed{1});
    Signal wet = input;
    shelf.processInPlace(wet.data(), 64, 1.0f);
    Signal output = input;
    fade->apply(output.data(), 64, true);
    const float step = 1000.0f / (10.0f * 48000.0f);
    float mix = 0;
    for (std::size_t i = 0; i < 64; ++i) {
        mix = mix + step;
        EXPECT_EQ(output[i], mix * wet[i] + (1.0f - mix) * input[i]) << i;
    }
}

TEST(BiquadCrossfade, NeitherAllocatesNorLocksWhileItRuns) {
    const auto fade =
        orvane::BiquadFilterFactory().createCrossfadedLowShelf(48000.0f, 500.0f, 9.0f, 64, 1.0f, 0.0f);
    Signal block = test::noise(64, test::Seed{2});
    const test::RealtimeScope scope;
    for (int round = 0; round < 4; ++round)
        fade->apply(block.data(), 64, round < 2);
    const auto seen = scope.violations();
    EXPECT_EQ(seen, test::RealtimeViolations{});
}

} // namespace
