// SPDX-License-Identifier: GPL-3.0-or-later
// Faults of a host, and of a tracker: samples that are no sound, rates and block sizes that nobody serves, matrices that turn
// nothing. Whatever comes in, what goes out is finite, and the next sound is as if nothing had been.
#include "TestDataFolder.h"
#include "TestProcessor.h"

#include "support/StandInTracker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

using test::Processor;

constexpr double rate = 48000.0;
constexpr int blockSize = 64;

/// Late reverb, reflections and low-frequency channel: all that could keep a fault.
std::unique_ptr<Processor>
fullProcessor(std::unique_ptr<OrvaneIPC::IOrvaneParameterClient> tracker = nullptr) {
    auto processor = test::makeProcessor([] { return test::TestDataFolder::filled().path(); }, nullptr,
                                         std::move(tracker));
    EXPECT_TRUE(test::setInputs(*processor, 6));
    test::choose(*processor, "Speaker Layouts", "5.1 ITU");
    test::choose(*processor, "Scenes", "Kitchen");
    return processor;
}

std::vector<float> renderFresh(Processor& processor, const juce::AudioBuffer<float>& input) {
    processor.prepareToPlay(rate, blockSize);
    EXPECT_FALSE(processor.hasError());
    return test::render(processor, input, std::array{blockSize});
}

bool allFinite(const std::vector<float>& samples) {
    return std::ranges::all_of(samples, [](float sample) { return std::isfinite(sample); });
}

float loudest(const std::vector<float>& samples) {
    float peak = 0;
    for (const float sample : samples)
        peak = std::max(peak, std::abs(sample));
    return peak;
}

/// Reference: the same input with zeros where the faults stand.
TEST(FaultySamples, AreHeardAsSilenceAndNothingElseChanges) {
    constexpr std::array faults{std::numeric_limits<float>::quiet_NaN(),
                                std::numeric_limits<float>::infinity(),
                                -std::numeric_limits<float>::infinity(), 1.1e6f, -3e38f};
    const auto processor = fullProcessor();
    auto faulty = test::noiseBuffer(6, 100 * blockSize, 4);
    auto silenced = test::noiseBuffer(6, 100 * blockSize, 4);
    std::mt19937 random(6);
    for (int fault = 0; fault < 500; ++fault) {
        const int channel = static_cast<int>(random() % 6);
        const int frame = static_cast<int>(random() % (100 * blockSize));
        faulty.setSample(channel, frame, faults[random() % faults.size()]);
        silenced.setSample(channel, frame, 0.0f);
    }
    const auto expected = renderFresh(*processor, silenced);
    EXPECT_GT(loudest(expected), 0.01f);
    EXPECT_EQ(renderFresh(*processor, faulty), expected);
}

TEST(FaultySamples, InEveryChannelForASecondLeaveNothingBehind) {
    const auto processor = fullProcessor();
    const auto sound = test::noiseBuffer(6, 200 * blockSize, 4);
    juce::AudioBuffer<float> faulty(6, 48000);
    for (int channel = 0; channel < 6; ++channel)
        juce::FloatVectorOperations::fill(faulty.getWritePointer(channel),
                                          channel % 2 == 0 ? std::nanf("") : HUGE_VALF, 48000);
    processor->prepareToPlay(rate, blockSize);
    const auto during = test::render(*processor, faulty, std::array{blockSize});
    EXPECT_EQ(loudest(during), 0.0f);
    const auto after = test::render(*processor, sound, std::array{blockSize});
    EXPECT_GT(loudest(after), 0.01f);
    EXPECT_TRUE(allFinite(after));
}

/// The loudest that is let in is rendered, not cut off, and decays.
TEST(FaultySamples, UpToAMillionAreSound) {
    const auto processor = fullProcessor();
    juce::AudioBuffer<float> input(6, 20 * blockSize);
    for (int channel = 0; channel < 6; ++channel)
        juce::FloatVectorOperations::fill(input.getWritePointer(channel), 1e6f, input.getNumSamples());
    const auto heard = renderFresh(*processor, input);
    EXPECT_TRUE(allFinite(heard));
    EXPECT_GT(loudest(heard), 1e4f);
}

/// What lies beyond the input bus is the plug-in's own output: no input, so nothing is to be done to it.
TEST(FaultySamples, BeyondTheInputBusAreOverwritten) {
    const auto processor = test::makeDryProcessor();
    ASSERT_TRUE(test::setInputs(*processor, 1));
    test::choose(*processor, "Speaker Layouts", "1.0");
    processor->prepareToPlay(rate, blockSize);
    auto buffer = test::noiseBuffer(2, blockSize, 1);
    juce::FloatVectorOperations::fill(buffer.getWritePointer(1), std::nanf(""), blockSize);
    for (int block = 0; block < 10; ++block) {
        test::process(*processor, buffer);
        ASSERT_TRUE(test::isFinite(buffer)) << block;
    }
}

/// Not one of them has data.
constexpr std::array oddRates{1.0,     8000.0,  11025.0, 12000.0, 16000.0,  22050.0,
                              32000.0, 44099.0, 47952.0, 64000.0, 384000.0, 768000.0};

class OddRates : public ::testing::TestWithParam<double> {};

/// Reference for the recovery: a processor that never met the odd rate.
TEST_P(OddRates, AreMutedInBlocksOfEverySizeAndTheNextServedRateSoundsAsAlways) {
    const auto processor = test::makeDryProcessor();
    const auto untouched = test::makeDryProcessor();
    for (const int size : {2, 3, 16, 63, 64, 127, 480, 512, 1000, 2048, 8192}) {
        processor->prepareToPlay(GetParam(), size);
        EXPECT_TRUE(processor->hasError()) << size;
        for (int block = 0; block < 3; ++block) {
            auto buffer = test::noiseBuffer(2, size, 1);
            test::process(*processor, buffer);
            ASSERT_TRUE(test::isSilent(buffer)) << size;
        }
        processor->releaseResources();
        const auto sound = test::noiseBuffer(2, 3 * size + 1000, 2);
        const auto render = [&](Processor& one) {
            one.prepareToPlay(48000.0, size);
            EXPECT_FALSE(one.hasError());
            return test::render(one, sound, std::array{size});
        };
        const auto expected = render(*untouched);
        ASSERT_GT(loudest(expected), 0.01f) << size;
        ASSERT_EQ(render(*processor), expected) << size;
        processor->releaseResources();
    }
}
INSTANTIATE_TEST_SUITE_P(Twelve, OddRates, ::testing::ValuesIn(oddRates), [](const auto& hertz) {
    return "Hertz" + std::to_string(static_cast<int>(hertz.param));
});

/// The same at the rates that are served, so that a size is silent for its rate and not for itself.
TEST(ServedRates, AreFiniteInBlocksOfEverySize) {
    const auto processor = test::makeDryProcessor();
    for (const int size : {2, 3, 16, 63, 64, 127, 480, 512, 1000, 2048, 8192}) {
        for (const double served : {44100.0, 96000.0}) {
            processor->prepareToPlay(served, size);
            EXPECT_FALSE(processor->hasError());
            const auto heard =
                test::render(*processor, test::noiseBuffer(2, 3 * size + 2000, 2), std::array{size});
            EXPECT_GT(loudest(heard), 0.01f) << size;
            EXPECT_TRUE(allFinite(heard)) << size;
        }
    }
}

/// Against the announcement. Reference: the same sound in blocks as announced.
TEST(LongerBlocks, ThanAnnouncedSoundLikeThePiecesThatTheyAreMadeOf) {
    const auto processor = fullProcessor();
    const auto input = test::noiseBuffer(6, 5000, 2);
    const auto expected = renderFresh(*processor, input);
    EXPECT_GT(loudest(expected), 0.01f);
    for (const int size : {blockSize + 1, 100, 2 * blockSize, 3 * blockSize - 1, 1000, 5000}) {
        processor->prepareToPlay(rate, blockSize);
        EXPECT_EQ(test::render(*processor, input, std::array{size}), expected) << size;
    }
}

/// Whatever a tracker's matrix holds, at rest and while the Scene is built anew from it.
TEST(FaultyTrackers, LeaveTheSoundFiniteAndNothingBehind) {
    auto owned = std::make_unique<test::StandInTracker>();
    test::StandInTracker& tracker = *owned;
    const auto processor = fullProcessor(std::move(owned));
    constexpr std::array values{0.0f,
                                1.0f,
                                -1.0f,
                                1e-38f,
                                1000.0f,
                                -1000.0f,
                                3e38f,
                                -1e30f,
                                HUGE_VALF,
                                -HUGE_VALF,
                                std::numeric_limits<float>::quiet_NaN()};
    const auto input = test::noiseBuffer(6, 4 * blockSize, 2);
    std::mt19937 random(8);
    for (const char* scene : {"Kitchen", "Stadium", "Mix Room", "Analytic Dry"}) {
        test::choose(*processor, "Scenes", scene);
        tracker.active = false;
        const auto expected = renderFresh(*processor, input);
        EXPECT_GT(loudest(expected), 0.01f) << scene;
        for (int round = 0; round < 200; ++round) {
            const std::size_t few =
                round % 2 == 0 ? values.size() - 5 : values.size(); // those that are followed
            for (float& element : tracker.matrix)
                element = values[random() % few];
            tracker.active = true;
            if (round % 20 == 0)
                processor->prepareToPlay(rate, blockSize);
            ASSERT_TRUE(allFinite(test::render(*processor, input, std::array{blockSize})))
                << scene << ' ' << round;
        }
        tracker.active = false;
        EXPECT_EQ(renderFresh(*processor, input), expected) << scene;
    }
}

TEST(BlocksOfOne, AreMutedWithTheFlagAtEveryRateAndLongerOnesServedAgain) {
    const auto processor = fullProcessor();
    const auto sound = test::noiseBuffer(6, 20 * blockSize, 2);
    const auto expected = renderFresh(*processor, sound);
    processor->releaseResources();
    for (const double served : {24000.0, 44100.0, 48000.0, 88200.0, 96000.0, 176400.0, 192000.0}) {
        for (const int size : {1, 0, -1}) {
            processor->prepareToPlay(served, size);
            EXPECT_TRUE(processor->hasError()) << served;
            for (int block = 0; block < 50; ++block) {
                auto buffer = test::noiseBuffer(6, 1, 1);
                test::process(*processor, buffer);
                ASSERT_TRUE(test::isSilent(buffer)) << served;
            }
            processor->releaseResources();
        }
    }
    EXPECT_EQ(renderFresh(*processor, sound), expected);
}

} // namespace
