// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SampleBuffer.h"
#include "data/DataFileExceptions.h"
#include "engine/assembly/ComponentFactory.h"
#include "parameters/ParameterSet.h"
#include "parameters/StubComponentFactory.h"
#include "parameters/core/ParameterSet.h"
#include "room/ReverbFilterFactory.h"
#include "room/ReverbProcessor.h"
#include "support/RealtimeScope.h"
#include "support/ReverbFiles.h"
#include "support/Signals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace {

using namespace orvane;
using kestrum::core::ReverbProcessor;
using test::Signal;

constexpr std::uint64_t blockSize = 64;

/// Keeps what it is fed with.
struct Listener final : ISpatialProcessor {
    explicit Listener(Signal& heard) : heard(heard) {}
    void process(const SampleBuffer& input, SampleBuffer& output) override {
        EXPECT_EQ(input.numChannels, 1u);
        heard.assign(input.channel(0).begin(), input.channel(0).end());
        output.clear();
    }
    void workAhead(std::uint64_t pendingSamples) override { heard = {static_cast<float>(pendingSamples)}; }
    Signal& heard;
};

struct ListeningFactory final : test::StubComponentFactory {
    std::unique_ptr<ISpatialProcessor>
    createBinauralReverb(std::uint64_t block, double rate, kestrum::core::IReverbParameterView* /*view*/,
                         std::unique_ptr<IReverbFilter> /*filter*/,
                         std::optional<float> expectedDecay) const override {
        askedDecay = expectedDecay;
        askedBlock = block;
        askedRate = rate;
        return std::make_unique<Listener>(heard);
    }
    mutable Signal heard;
    mutable std::uint64_t askedBlock = 0;
    mutable double askedRate = 0;
    mutable std::optional<float> askedDecay;
};

struct RecordingFilters final : IReverbFilterFactory {
    std::unique_ptr<IReverbFilter> create(double rate, std::uint64_t block,
                                          std::unique_ptr<IReverbImpulseResponse> response,
                                          const std::string& folder, std::uint32_t room) const override {
        EXPECT_NE(response, nullptr);
        EXPECT_EQ(rate, 44100.0) << "truncated";
        EXPECT_EQ(block, blockSize);
        EXPECT_EQ(folder, "folder");
        askedRoom = room;
        return nullptr;
    }
    mutable std::uint32_t askedRoom = 0;
};

struct ReverbSum : ::testing::Test {
    void process(const SampleBuffer& input) {
        const RecordingFilters filters;
        ReverbProcessor reverb(44100.9, blockSize, filters, factory, &parameters, "folder");
        SampleBuffer output(2, blockSize);
        reverb.process(input, output);
    }

    kestrum::core::ParameterSet parameters{std::make_unique<ParameterSet>()};
    ListeningFactory factory;
};

TEST_F(ReverbSum, ReadsTheResponseOfTheSelectedRoom) {
    parameters.setRoomType(static_cast<VirtualAcoustics::Type>(36), false);
    const RecordingFilters filters;
    const ReverbProcessor reverb(44100.9, blockSize, filters, factory, &parameters, "folder");
    EXPECT_EQ(filters.askedRoom, 36u);
    EXPECT_EQ(factory.askedBlock, blockSize);
    EXPECT_EQ(factory.askedRate, 44100.9);
}

TEST_F(ReverbSum, AsksForTheDecayThatTheRoomsSceneWillBring) {
    parameters.setReverbOn(true, false);
    parameters.setRoomType(static_cast<VirtualAcoustics::Type>(36), false);
    parameters.setReverbDecayPercent(77.0f, false);
    const RecordingFilters filters;
    const ReverbProcessor reverb(44100.9, blockSize, filters, factory, &parameters, "folder");
    EXPECT_EQ(factory.askedDecay, 58.0f); // "Mix Room Small"
}

TEST_F(ReverbSum, HandsWorkAheadOn) {
    const RecordingFilters filters;
    ReverbProcessor reverb(44100.9, blockSize, filters, factory, &parameters, "folder");
    reverb.workAhead(17);
    EXPECT_THAT(factory.heard, ::testing::ElementsAre(17.0f));
}

/// Analytic: powers of two in every channel, so that the sum tells each of them, unscaled.
TEST_F(ReverbSum, FeedsThePlainSumOfAllChannels) {
    SampleBuffer input(16, blockSize);
    for (std::uint64_t channel = 0; channel < 16; ++channel)
        std::fill_n(input.channelPointers[channel], blockSize, static_cast<float>(1u << channel));
    process(input);
    EXPECT_THAT(factory.heard, ::testing::Each(65535.0f));
    EXPECT_EQ(factory.heard.size(), blockSize);
}

TEST_F(ReverbSum, AnInputWithoutChannelsFeedsSilence) {
    process(SampleBuffer());
    EXPECT_EQ(factory.heard.size(), blockSize);
    EXPECT_THAT(factory.heard, test::Silence());
}

TEST_F(ReverbSum, ForgetsTheBlockBefore) {
    const RecordingFilters filters;
    ReverbProcessor reverb(44100.9, blockSize, filters, factory, &parameters, "folder");
    SampleBuffer output(2, blockSize);
    SampleBuffer input(2, blockSize);
    std::fill_n(input.channelPointers[1], blockSize, 1.0f);
    reverb.process(input, output);
    EXPECT_THAT(factory.heard, ::testing::Each(1.0f));
    input.clear();
    reverb.process(input, output);
    EXPECT_THAT(factory.heard, test::Silence());
}

TEST_F(ReverbSum, TakesTheSmallerOfTheTwoLengths) {
    SampleBuffer longer(1, 100);
    std::fill_n(longer.channelPointers[0], 100, 2.0f);
    process(longer);
    EXPECT_EQ(factory.heard.size(), blockSize);
    SampleBuffer shorter(1, 40);
    std::fill_n(shorter.channelPointers[0], 40, 2.0f);
    process(shorter);
    ASSERT_EQ(factory.heard.size(), blockSize);
    EXPECT_EQ(factory.heard[39], 2.0f);
    EXPECT_EQ(factory.heard[40], 0.0f);
}

/// With its real parts and a real file.
struct WholeReverb : ::testing::Test {
    std::unique_ptr<ReverbProcessor> made(const std::string& folder = test::reverbFolder()) {
        return std::make_unique<ReverbProcessor>(48000, 512, ReverbFilterFactory(),
                                                 kestrum::core::ComponentFactory(), &parameters, folder);
    }
    kestrum::core::ParameterSet parameters{std::make_unique<ParameterSet>()};
};

TEST_F(WholeReverb, IsHeardInBothEarsAndNotAlike) {
    parameters.setRoomType(static_cast<VirtualAcoustics::Type>(15), false);
    const auto reverb = made();
    SampleBuffer input(2, 512);
    input.channelPointers[1][0] = 1.0f;
    SampleBuffer output(2, 512);
    reverb->process(input, output);
    const Signal left(output.channel(0).begin(), output.channel(0).end());
    const Signal right(output.channel(1).begin(), output.channel(1).end());
    EXPECT_GT(test::peak(left), 0.001f);
    EXPECT_GT(test::peak(right), 0.001f);
    EXPECT_NE(left, right);
}

/// 48 is a room without anything; no Scene chooses it.
TEST_F(WholeReverb, OfARoomWithoutReverbIsSilent) {
    for (const std::uint32_t room : {0u, 1u, 48u}) {
        parameters.setRoomType(static_cast<VirtualAcoustics::Type>(room), false);
        const auto reverb = made();
        SampleBuffer input(1, 512);
        input.channelPointers[0][0] = 1.0f;
        SampleBuffer output(2, 512);
        for (int block = 0; block < 3; ++block) {
            reverb->process(input, output);
            EXPECT_THAT(Signal(output.channel(0).begin(), output.channel(0).end()), test::Silence()) << room;
        }
    }
}

TEST_F(WholeReverb, WithoutItsFileIsNotBuilt) {
    const test::TemporaryFolder empty;
    EXPECT_THROW(made(empty.path()), wavNotReadableException);
}

TEST_F(WholeReverb, NeitherAllocatesNorLocks) {
    parameters.setRoomType(static_cast<VirtualAcoustics::Type>(15), false);
    const auto reverb = made();
    SampleBuffer input(16, 512);
    SampleBuffer output(2, 512);
    const test::RealtimeScope scope;
    for (int block = 0; block < 3; ++block) {
        parameters.setReverbDecayPercent(90.0f - static_cast<float>(block), false);
        reverb->process(input, output);
    }
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
}

} // namespace
