// SPDX-License-Identifier: GPL-3.0-or-later
// The real processor with its real engine, over a data folder whose responses are one impulse per ear: louder
// at the ear on the source's side.
#include "TestDataFolder.h"
#include "TestProcessor.h"
#include "data/TenmarshHrir.h"
#include "data/TenmarshHrirReader.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <numeric>
#include <thread>

namespace {

using test::Processor;

double energy(std::span<const float> samples) {
    return std::transform_reduce(samples.begin(), samples.end(), 0.0, std::plus<>(),
                                 [](float sample) { return static_cast<double>(sample) * sample; });
}

std::span<const float> left(const std::vector<float>& rendered) {
    return std::span(rendered).first(rendered.size() / 2);
}
std::span<const float> right(const std::vector<float>& rendered) {
    return std::span(rendered).last(rendered.size() / 2);
}

std::vector<float> render(Processor& processor, const juce::AudioBuffer<float>& input, int blockSize) {
    return test::render(processor, input, std::array{blockSize});
}

TEST(Failure, AnUnsupportedRateIsSilentAndASupportedOneRecovers) {
    const auto processor = test::makeDryProcessor();
    EXPECT_NO_THROW(processor->prepareToPlay(22050.0, 512));
    EXPECT_TRUE(processor->hasError());
    auto buffer = test::noiseBuffer(2, 512, 1);
    test::process(*processor, buffer);
    EXPECT_TRUE(test::isSilent(buffer));

    processor->prepareToPlay(48000.0, 512);
    EXPECT_FALSE(processor->hasError());
    EXPECT_GT(energy(render(*processor, test::noiseBuffer(2, 2048, 1), 512)), 1.0);
}

TEST(Failure, BlocksOfOneAreRefusedAndLongerOnesServedAgain) {
    const auto processor = test::makeDryProcessor();
    processor->prepareToPlay(48000.0, 1);
    EXPECT_TRUE(processor->hasError());
    EXPECT_EQ(processor->getLatencySamples(), 1);
    auto buffer = test::noiseBuffer(2, 1, 1);
    test::process(*processor, buffer);
    EXPECT_TRUE(test::isSilent(buffer));
    processor->prepareToPlay(48000.0, 2);
    EXPECT_FALSE(processor->hasError());
}

TEST(Failure, AMissingDataFolderIsFoundOnceItHasBeenInstalled) {
    const test::TestDataFolder folder;
    orvane::TenmarshHrir store(
        std::make_unique<orvane::TenmarshHrirReader>()); // what a store holds needs no file
    const auto processor = test::makeProcessor([&] { return folder.path(); }, &store);
    test::choose(*processor, "Scenes", "Analytic Dry");
    processor->prepareToPlay(48000.0, 64);
    EXPECT_TRUE(processor->hasError());
    folder.fill();
    processor->prepareToPlay(48000.0, 64);
    EXPECT_FALSE(processor->hasError());
}

struct Rate {
    int hertz;
    int bandLimitFactor; ///< How many times it exceeds the rate of its data file.
};

class SupportedRates : public ::testing::TestWithParam<Rate> {};

/// Analytic reference: the path's own delay is one internal block, and the impulse of each response stands at
/// tap 4 of the file's rate.
TEST_P(SupportedRates, RenderAnImpulseOneBlockLate) {
    const auto [hertz, bandLimitFactor] = GetParam();
    const auto processor = test::makeDryProcessor();
    processor->prepareToPlay(hertz, 256);
    ASSERT_FALSE(processor->hasError());
    const int start = (hertz / 100 / 256 + 1) * 256; // behind the fade-in of 10 ms
    juce::AudioBuffer<float> input(2, start + 4096);
    input.clear();
    input.setSample(0, start, 1.0f);
    const auto rendered = render(*processor, input, 256);
    const auto ear = left(rendered);
    const auto peak = std::ranges::max_element(ear, {}, [](float sample) { return std::abs(sample); });
    EXPECT_EQ(peak - ear.begin(), start + 256 + 4 * bandLimitFactor);
    EXPECT_GT(std::abs(*peak), 0.1f);
    EXPECT_TRUE(std::ranges::all_of(rendered, [](float sample) { return std::isfinite(sample); }));
}
INSTANTIATE_TEST_SUITE_P(AllSeven, SupportedRates,
                         ::testing::Values(Rate{24000, 1}, Rate{44100, 1}, Rate{48000, 1}, Rate{88200, 2},
                                           Rate{96000, 2}, Rate{176400, 4}, Rate{192000, 4}));

TEST(Rendering, TheFirstChannelIsLouderAtTheLeftEarAndTheSecondAtTheRight) {
    for (const int channel : {0, 1}) {
        const auto processor = test::makeDryProcessor();
        processor->prepareToPlay(48000.0, 128);
        auto input = test::noiseBuffer(2, 8192, 3);
        input.clear(1 - channel, 0, 8192);
        const auto rendered = render(*processor, input, 128);
        const double leftEnergy = energy(left(rendered));
        const double rightEnergy = energy(right(rendered));
        EXPECT_GT(channel == 0 ? leftEnergy : rightEnergy, 1.5 * (channel == 0 ? rightEnergy : leftEnergy));
    }
}

TEST(Rendering, ChannelsBeyondTheSecondComeBackSilent) {
    const auto processor = test::makeDryProcessor();
    ASSERT_TRUE(test::setInputs(*processor, 6));
    test::choose(*processor, "Speaker Layouts", "5.1 ITU");
    processor->prepareToPlay(48000.0, 64);
    for (int block = 0; block < 8; ++block) {
        auto buffer = test::noiseBuffer(6, 64, 7);
        test::process(*processor, buffer);
        for (int channel = 2; channel < 6; ++channel)
            EXPECT_EQ(buffer.getMagnitude(channel, 0, 64), 0.0f);
    }
}

class EveryLayout : public ::testing::TestWithParam<int> {};

TEST_P(EveryLayout, SoundsFromABusOfItsWidthAndIsSilentOnANarrowerOne) {
    const auto probe = test::makeDryProcessor();
    std::vector<orvane::kestrum::core::ISupportedLayouts::Properties> layouts;
    probe->getSupportedLayouts()->forEach([&](const auto& entry) { layouts.push_back(entry); });
    const auto& layout = layouts[static_cast<std::size_t>(GetParam())];
    const int width = static_cast<int>(layout.channelCount);
    for (const int inputs : {width, width - 1}) {
        if (inputs == 0)
            continue;
        const auto processor = test::makeDryProcessor();
        ASSERT_TRUE(test::setInputs(*processor, inputs));
        test::choose(*processor, "Speaker Layouts", layout.name);
        processor->prepareToPlay(44100.0, 64);
        ASSERT_FALSE(processor->hasError());
        const auto rendered = render(*processor, test::noiseBuffer(inputs, 2048, 5), 64);
        if (inputs == width)
            EXPECT_GT(energy(rendered), 1.0) << layout.name;
        else
            EXPECT_EQ(energy(rendered), 0.0) << layout.name;
        EXPECT_TRUE(std::ranges::all_of(rendered, [](float sample) { return std::isfinite(sample); }));
    }
}
INSTANTIATE_TEST_SUITE_P(InTableOrder, EveryLayout, ::testing::Range(0, 32));

/// A host hands a stereo buffer to an instance with a mono input, and its second channel holds what the
/// plug-in wrote there last: read as input, it would feed back for ever.
TEST(NarrowBus, AMonoInputUnderAStereoLayoutStaysSilentAndNeverFeedsBack) {
    const auto processor = test::makeDryProcessor();
    ASSERT_TRUE(test::setInputs(*processor, 1));
    processor->prepareToPlay(48000.0, 64);
    ASSERT_FALSE(processor->hasError());
    auto buffer = test::noiseBuffer(2, 64, 1);
    const auto input = test::noise(64, 2);
    for (int block = 0; block < 500; ++block) {
        std::ranges::copy(input, buffer.getWritePointer(0)); // the second channel stays as it came back
        test::process(*processor, buffer);
        ASSERT_TRUE(test::isSilent(buffer)) << block;
    }
}

TEST(NarrowBus, AMonoInputUnderTheMonoLayoutSoundsTheSameWhateverLiesInTheSecondChannel) {
    const auto run = [](float second) {
        const auto processor = test::makeDryProcessor();
        EXPECT_TRUE(test::setInputs(*processor, 1));
        test::choose(*processor, "Speaker Layouts", "1.0");
        processor->prepareToPlay(48000.0, 64);
        std::vector<float> heard;
        for (int block = 0; block < 32; ++block) {
            juce::AudioBuffer<float> buffer(2, 64);
            std::ranges::copy(test::noise(64, static_cast<std::uint32_t>(block)), buffer.getWritePointer(0));
            juce::FloatVectorOperations::fill(buffer.getWritePointer(1), second, 64);
            test::process(*processor, buffer);
            heard.insert(heard.end(), buffer.getReadPointer(0), buffer.getReadPointer(0) + 64);
        }
        return heard;
    };
    const auto quiet = run(0.0f);
    EXPECT_GT(energy(quiet), 1.0);
    EXPECT_EQ(run(0.9f), quiet);
}

class AnnouncedBlocks : public ::testing::TestWithParam<int> {};

/// Property: the stream does not depend on how the host cuts it, as long as no block is longer than
/// announced.
TEST_P(AnnouncedBlocks, GiveTheSameStreamForShorterAndVaryingBlocksDownToOne) {
    const int announced = GetParam();
    const int frames = std::max(4 * announced, 3000);
    const auto input = test::noiseBuffer(2, frames, 21);
    const auto run = [&](std::vector<int> blocks) {
        const auto processor = test::makeDryProcessor();
        processor->prepareToPlay(44100.0, announced);
        EXPECT_FALSE(processor->hasError());
        return test::render(*processor, input, blocks);
    };
    const auto fixed = run({announced});
    EXPECT_GT(energy(fixed), 1.0);
    EXPECT_EQ(run({1}), fixed);
    EXPECT_EQ(run({announced, 1, std::max(1, announced / 2), std::max(1, announced - 1),
                   std::max(1, announced / 7)}),
              fixed);
}
INSTANTIATE_TEST_SUITE_P(Sizes, AnnouncedBlocks, ::testing::Values(2, 63, 64, 513, 4096));

TEST(Robustness, DenormalInputIsHarmlessAndTheNextSoundIsAsAlways) {
    const auto processor = test::makeDryProcessor();
    processor->prepareToPlay(48000.0, 64);
    juce::AudioBuffer<float> tiny(2, 64);
    for (int block = 0; block < 16; ++block) {
        for (int channel = 0; channel < 2; ++channel)
            juce::FloatVectorOperations::fill(tiny.getWritePointer(channel), 1e-40f, 64);
        test::process(*processor, tiny);
        EXPECT_TRUE(test::isFinite(tiny));
    }
    EXPECT_GT(energy(render(*processor, test::noiseBuffer(2, 1024, 4), 64)), 1.0);
}

TEST(Robustness, PreparingAgainWithoutAReleaseStartsAfresh) {
    const auto processor = test::makeDryProcessor();
    const auto input = test::noiseBuffer(2, 2048, 8);
    processor->prepareToPlay(48000.0, 64);
    const auto first = render(*processor, input, 64);
    processor->prepareToPlay(44100.0, 512);
    render(*processor, input, 512);
    processor->prepareToPlay(48000.0, 64);
    EXPECT_EQ(render(*processor, input, 64), first);
}

TEST(Robustness, TwoProcessorsAtDifferentRatesDoNotDisturbEachOther) {
    const auto input = test::noiseBuffer(2, 64, 8);
    const auto first = test::makeDryProcessor();
    const auto second = test::makeDryProcessor();
    first->prepareToPlay(48000.0, 64);
    second->prepareToPlay(96000.0, 64); // now the shared store holds this rate's responses
    ASSERT_FALSE(first->hasError());
    ASSERT_FALSE(second->hasError());
    double firstEnergy = 0;
    double secondEnergy = 0;
    for (int block = 0; block < 100; ++block) {
        juce::AudioBuffer<float> one(input);
        juce::AudioBuffer<float> two(input);
        test::process(*first, one);
        test::process(*second, two);
        ASSERT_TRUE(test::isFinite(one));
        ASSERT_TRUE(test::isFinite(two));
        firstEnergy += energy({one.getReadPointer(0), 64});
        secondEnergy += energy({two.getReadPointer(0), 64});
        if (block == 50)
            test::setParameter(*first, "Head Rotation",
                               60.0f); // draws its responses anew, from the other rate's set
    }
    EXPECT_GT(firstEnergy, 1.0);
    EXPECT_GT(secondEnergy, 1.0);
}

/// Runs blocks until the rebuild that a change asked for has been faded in. Rebuilds run on the clock, so
/// this waits for what is heard, not for a time.
void runUntilSettled(Processor& processor, const juce::AudioBuffer<float>& block,
                     const std::vector<float>& goal) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (std::chrono::steady_clock::now() < deadline) {
        juce::AudioBuffer<float> buffer(block);
        test::process(processor, buffer);
        double difference = 0;
        for (int frame = 0; frame < buffer.getNumSamples(); ++frame)
            difference = std::max<double>(
                difference, std::abs(buffer.getSample(0, frame) - goal[static_cast<std::size_t>(frame)]));
        if (difference < 1e-5)
            return;
    }
    FAIL() << "the change was never heard";
}

/// A block that repeats for ever settles into one periodic output, which depends on the settings alone.
std::vector<float> settledBlock(Processor& processor, const juce::AudioBuffer<float>& block) {
    juce::AudioBuffer<float> buffer(block);
    for (int turn = 0; turn < 400; ++turn) {
        buffer = block;
        test::process(processor, buffer);
    }
    return {buffer.getReadPointer(0), buffer.getReadPointer(0) + buffer.getNumSamples()};
}

TEST(RestoredSession, SoundsFromItsFirstBlockAsIfItsSceneHadBeenChosenByHand) {
    const auto block = test::noiseBuffer(2, 256, 6);

    const auto byHand = test::makeDryProcessor();
    byHand->prepareToPlay(48000.0, 256);
    test::choose(*byHand, "Scenes", "Kitchen");
    test::setParameter(*byHand, "Focus", 30.0f);
    juce::MemoryBlock session;
    byHand->getStateInformation(session);

    const auto restored = test::makeProcessor([] { return test::TestDataFolder::filled().path(); });
    restored->setStateInformation(session.getData(), static_cast<int>(session.getSize()));
    restored->prepareToPlay(48000.0, 256);
    ASSERT_FALSE(restored->hasError());
    const auto input = test::noiseBuffer(2, 4096, 6);
    const auto fromTheStart = render(*restored, input, 256);

    // What is heard in the long run is the same on both ways ...
    runUntilSettled(*byHand, block, settledBlock(*restored, block));
    // ... and a fresh start of the one that was set by hand gives the restored one's very stream.
    byHand->releaseResources();
    byHand->prepareToPlay(48000.0, 256);
    EXPECT_EQ(render(*byHand, input, 256), fromTheStart);
    EXPECT_GT(energy(fromTheStart), 1.0);
}

TEST(BlockPathOfTheProcessor, NeitherAllocatesNorLocksNorWaits) {
    const auto processor = test::makeDryProcessor();
    ASSERT_TRUE(test::setInputs(*processor, 12));
    test::choose(*processor, "Speaker Layouts", "7.1.4");
    processor->prepareToPlay(48000.0, 128);
    ASSERT_FALSE(processor->hasError());
    const auto noise = test::noiseBuffer(12, 128, 2);
    juce::AudioBuffer<float> buffer(12, 128);
    juce::MidiBuffer midi;
    test::RealtimeViolations seen;
    for (int block = 0; block < 60; ++block) {
        for (int channel = 0; channel < 12; ++channel)
            std::copy_n(noise.getReadPointer(channel), 128, buffer.getWritePointer(channel));
        if (block % 5 == 0) { // the host's thread, outside the scope
            test::setParameter(*processor, "Head Rotation", static_cast<float>(block));
            test::setParameter(*processor, "Master Gain", -0.1f * static_cast<float>(block));
            test::setParameter(*processor, "Focus", static_cast<float>(block));
        }
        const test::RealtimeScope scope;
        processor->processBlock(buffer, midi);
        const auto now = scope.violations();
        seen = {seen.allocations + now.allocations, seen.frees + now.frees, seen.locks + now.locks,
                seen.waits + now.waits};
    }
    EXPECT_EQ(seen, test::RealtimeViolations{});
}

/// Through rebuilds and crossfades, the push of the Scene's values at the start of each fade included.
TEST(BlockPathOfTheProcessor, StaysCleanWhileEnginesAreReplaced) {
    const auto processor = test::makeDryProcessor();
    ASSERT_TRUE(test::setInputs(*processor, 6));
    processor->prepareToPlay(48000.0, 64);
    const auto noise = test::noiseBuffer(6, 64, 2);
    juce::AudioBuffer<float> buffer(6, 64);
    juce::MidiBuffer midi;
    test::RealtimeViolations seen;
    const char* const layouts[]{"5.1 ITU", "Quad", "1.0", "2.0 +/-45\xC2\xB0"};
    for (int change = 0; change < 12; ++change) {
        test::choose(*processor, "Speaker Layouts", layouts[change % 4]);
        test::choose(*processor, "Scenes", change % 2 == 0 ? "Analytic Position" : "Analytic Dry");
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(60);
        while (std::chrono::steady_clock::now() < end) {
            for (int channel = 0; channel < 6; ++channel)
                std::copy_n(noise.getReadPointer(channel), 64, buffer.getWritePointer(channel));
            const test::RealtimeScope scope;
            processor->processBlock(buffer, midi);
            const auto now = scope.violations();
            seen = {seen.allocations + now.allocations, seen.frees + now.frees, seen.locks + now.locks,
                    seen.waits + now.waits};
        }
    }
    EXPECT_EQ(seen, test::RealtimeViolations{});
}

} // namespace
