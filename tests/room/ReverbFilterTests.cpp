// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SampleBuffer.h"
#include "data/DataFileExceptions.h"
#include "data/FileReader.h"
#include "room/DecayTable.h"
#include "room/ReverbContainer.h"
#include "room/ReverbFilter.h"
#include "room/ReverbFilterFactory.h"
#include "room/ReverbImpulseResponse.h"
#include "support/RealtimeScope.h"
#include "support/Signals.h"
#include "support/WaveFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>

namespace {

using orvane::ReverbFilter;
using orvane::SampleBuffer;
using test::Signal;

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

/// So many frames of 1 on the left and -1 on the right.
struct Ones final : orvane::IReverbImpulseResponse {
    struct Asked {
        double sampleRate = 0;
        std::int32_t fileRate = 0;
        std::uint32_t roomId = 0;
        std::string path;
    };

    explicit Ones(std::uint64_t frames, Asked* asked = nullptr) : count(frames), asked(asked) {}

    void load(double sampleRate, std::int32_t fileRate, std::uint32_t roomId,
              const std::string& path) override {
        if (asked != nullptr)
            *asked = {sampleRate, fileRate, roomId, path};
    }
    std::uint64_t frames() const noexcept override { return count; }
    void copyTo(SampleBuffer& buffer) const override {
        std::fill_n(buffer.channelPointers[0], std::min(count, buffer.numSamples), 1.0f);
        std::fill_n(buffer.channelPointers[1], std::min(count, buffer.numSamples), -1.0f);
    }

    std::uint64_t count;
    Asked* asked;
};

/// A filter over ones and the buffer that a reverb would hold for it.
struct Filter {
    explicit Filter(std::uint64_t frames, std::uint64_t blockSize = 512, double sampleRate = 48000)
        : filter(sampleRate, blockSize, std::make_unique<Ones>(frames), "folder", 15),
          buffer(2, (filter.partitionCount() + 1) * blockSize) {}

    Signal drawn(float decay, std::uint64_t channel = 0) {
        filter.update(buffer, decay);
        return {buffer.channel(channel).begin(), buffer.channel(channel).end()};
    }

    ReverbFilter filter;
    SampleBuffer buffer;
};

constexpr std::uint64_t taper = 15;

struct DecayCase {
    float decay;
    std::uint32_t row;
};

class RowOfADecay : public ::testing::TestWithParam<DecayCase> {};

/// By hand: a hundredth of the way from 50 to 100 is a row; each quotient and product in 32-bit float. Every
/// place of the response has the gain of its own column.
TEST_P(RowOfADecay, ShapesEveryPlaceOfTheResponse) {
    constexpr std::uint64_t frames = 22020; // the columns change at whole samples, rounded up
    Filter filter(frames);
    const Signal left = filter.drawn(GetParam().decay);
    for (std::uint32_t column = 0; column < 100; ++column) {
        const std::uint64_t first = (frames * column + 99) / 100;
        const std::uint64_t last = std::min((frames * (column + 1) + 99) / 100, frames - taper) - 1;
        for (const std::uint64_t i : {first, (first + last) / 2, last}) {
            ASSERT_EQ(left[i], orvane::decayGain(GetParam().row, column)) << i << ", " << column;
            ASSERT_EQ(filter.buffer.channelPointers[1][i], -left[i]) << i;
        }
    }
}
INSTANTIATE_TEST_SUITE_P(OfTheScenesAndBetween, RowOfADecay,
                         ::testing::Values(DecayCase{50, 0}, DecayCase{51, 2}, DecayCase{52, 4},
                                           DecayCase{58, 16}, DecayCase{65, 30}, DecayCase{75, 50},
                                           DecayCase{80, 60}, DecayCase{85, 70}, DecayCase{90, 80},
                                           DecayCase{95, 90}, DecayCase{99, 98}, DecayCase{99.999f, 99}),
                         [](const auto& decay) { return "Row" + std::to_string(decay.param.row); });

class DecayBelowTheTable : public ::testing::TestWithParam<float> {};

TEST_P(DecayBelowTheTable, ShapesAsTheFastestRow) {
    EXPECT_EQ(Filter(5000).drawn(GetParam()), Filter(5000).drawn(50));
}
INSTANTIATE_TEST_SUITE_P(FromJustBelow, DecayBelowTheTable,
                         ::testing::Values(49.999f, 49.0f, 0.0f, -1.0f, -1e30f, -infinity));

class DecayBeyondTheTable : public ::testing::TestWithParam<float> {};

TEST_P(DecayBeyondTheTable, LeavesTheBodyAsStored) {
    const Signal left = Filter(5000).drawn(GetParam());
    for (std::uint64_t i = 0; i < 5000 - taper; ++i)
        ASSERT_EQ(left[i], 1.0f) << i;
}
INSTANTIATE_TEST_SUITE_P(From100On, DecayBeyondTheTable,
                         ::testing::Values(100.0f, 100.001f, 1000.0f, infinity, notANumber));

/// 5300 / 10000 * 100 is a little below 53 in 32-bit float, 5200 / 10000 * 100 is 52.
TEST(ReverbFilter, FindsTheColumnIn32BitFloat) {
    const Signal left = Filter(10000).drawn(75);
    EXPECT_EQ(left[5199], orvane::decayGain(50, 51));
    EXPECT_EQ(left[5200], orvane::decayGain(50, 52));
    EXPECT_EQ(left[5300], orvane::decayGain(50, 52));
    EXPECT_EQ(left[5301], orvane::decayGain(50, 53));
}

/// Listed: in the middle of row 50 the gain is 0.8543, at its end 0.0957.
TEST(ReverbFilter, From100To75TakesTheMiddleRow) {
    Filter filter(20000);
    filter.drawn(100);
    const Signal left = filter.drawn(75);
    EXPECT_TRUE(filter.filter.changed());
    EXPECT_NEAR(left[10000], 0.8543, 5e-5);
    EXPECT_NEAR(left[19900], 0.0957, 5e-5);
    EXPECT_EQ(filter.drawn(100)[10000], 1.0f) << "and back: the response is drawn anew, not shaped twice";
}

/// Analytic: the last 15 samples over 4, 8, ... 60; then silence to the end of the buffer, whatever it held.
TEST(ReverbFilter, TapersTheEndAndSilencesWhatLiesBehind) {
    Filter filter(5000);
    for (std::uint64_t channel = 0; channel < 2; ++channel)
        std::fill_n(filter.buffer.channelPointers[channel], filter.buffer.numSamples, 9.0f);
    const Signal left = filter.drawn(100);
    const Signal right = filter.drawn(100, 1);
    EXPECT_EQ(left[4984], 1.0f);
    for (std::uint64_t k = 0; k < taper; ++k) {
        EXPECT_EQ(left[4985 + k], 1.0f / static_cast<float>(4 * (k + 1))) << k;
        EXPECT_EQ(right[4985 + k], -left[4985 + k]) << k;
    }
    EXPECT_THAT(Signal(left.begin() + 5000, left.end()), test::Silence());
    EXPECT_THAT(Signal(right.begin() + 5000, right.end()), test::Silence());
}

TEST(ReverbFilter, ABufferThatEndsFirstIsTaperedAtItsOwnEnd) {
    Filter filter(5000);
    SampleBuffer shorter(2, 4500);
    filter.filter.update(shorter, 100);
    EXPECT_EQ(shorter.channelPointers[0][4484], 1.0f);
    EXPECT_EQ(shorter.channelPointers[0][4485], 0.25f);
    EXPECT_EQ(shorter.channelPointers[0][4499], 1.0f / 60.0f);
}

TEST(ReverbFilter, AResponseShorterThanTheTaperIsNotTapered) {
    Filter fourteen(14, 4096);
    EXPECT_EQ(fourteen.drawn(100)[13], 1.0f);
    Filter fifteen(15, 4096);
    EXPECT_EQ(fifteen.drawn(100)[0], 0.25f);
}

struct PaddingCase {
    std::uint64_t frames;
    std::uint64_t blockSize;
    std::uint64_t partitions;
    bool heard;
};

class Padding : public ::testing::TestWithParam<PaddingCase> {};

/// Deliberate: whole partitions of less than 4096 samples together are not heard, which depends on the block.
TEST_P(Padding, DecidesWhetherTheReverbIsHeard) {
    const PaddingCase& given = GetParam();
    Filter filter(given.frames, given.blockSize);
    EXPECT_EQ(filter.filter.partitionCount(), given.partitions);
    EXPECT_EQ(test::peak(filter.drawn(100)) > 0.0f, given.heard);
    EXPECT_TRUE(filter.filter.changed());
}
INSTANTIATE_TEST_SUITE_P(OfBlocks, Padding,
                         ::testing::Values(PaddingCase{4096, 512, 8, true}, PaddingCase{4096, 500, 9, true},
                                           PaddingCase{3763, 512, 8, true}, PaddingCase{3763, 480, 8, false},
                                           PaddingCase{3763, 64, 59, false},
                                           PaddingCase{2048, 1024, 2, false},
                                           PaddingCase{2048, 2047, 2, false},
                                           PaddingCase{2049, 2048, 2, true}, PaddingCase{1, 512, 1, false},
                                           PaddingCase{1, 4095, 1, false}, PaddingCase{1, 4096, 1, true},
                                           PaddingCase{0, 512, 0, false}));

TEST(ReverbFilter, AnEqualDecayWritesTheBufferOnce) {
    Filter filter(5000);
    EXPECT_FALSE(filter.filter.changed());
    filter.drawn(75);
    EXPECT_TRUE(filter.filter.changed());
    filter.buffer.channelPointers[0][100] = 42.0f;
    EXPECT_EQ(filter.drawn(75)[100], 42.0f);
    EXPECT_FALSE(filter.filter.changed());
    EXPECT_NE(filter.drawn(74)[100], 42.0f);
    EXPECT_TRUE(filter.filter.changed());
}

TEST(ReverbFilter, NotANumberIsAChangeAtEveryUpdate) {
    Filter filter(5000);
    for (int block = 0; block < 3; ++block) {
        filter.drawn(notANumber);
        EXPECT_TRUE(filter.filter.changed());
    }
}

struct RateCase {
    double sampleRate;
    std::int32_t fileRate;
    const char* path;
    std::int32_t factor;
};

class RunningRate : public ::testing::TestWithParam<RateCase> {};

TEST_P(RunningRate, ChoosesTheFileAndTheBandLimit) {
    const RateCase& given = GetParam();
    Ones::Asked asked;
    const auto filter = orvane::ReverbFilterFactory().create(
        given.sampleRate, 512, std::make_unique<Ones>(5000, &asked), "folder", 36);
    EXPECT_EQ(asked.sampleRate, given.sampleRate);
    EXPECT_EQ(asked.fileRate, given.fileRate);
    EXPECT_EQ(asked.roomId, 36u);
    EXPECT_EQ(asked.path, given.path);
    EXPECT_EQ(filter->bandLimitFactor(), given.factor);
    EXPECT_EQ(filter->partitionCount(), 10u);
}
INSTANTIATE_TEST_SUITE_P(OfTheSystem, RunningRate,
                         ::testing::Values(RateCase{24000, 24000, "folder/OVNdata512.dat", 1},
                                           RateCase{44100, 44100, "folder/OVNdata510.dat", 1},
                                           RateCase{48000, 48000, "folder/OVNdata511.dat", 1},
                                           RateCase{88200, 44100, "folder/OVNdata510.dat", 2},
                                           RateCase{96000, 48000, "folder/OVNdata511.dat", 2},
                                           RateCase{176400, 44100, "folder/OVNdata510.dat", 4},
                                           RateCase{192000, 48000, "folder/OVNdata511.dat", 4}));

TEST(ReverbFilter, AnUnknownRateIsRefused) {
    for (const double rate : {22050.0, 32000.0, 19200.0, 44099.9})
        EXPECT_THROW(ReverbFilter(rate, 512, std::make_unique<Ones>(5000), "folder", 15),
                     orvane::sampleRateNotSupportedException)
            << rate;
}

TEST(ReverbFilter, AMissingFileIsNotReadable) {
    const orvane::FileReader reader;
    const test::TemporaryFolder empty;
    EXPECT_THROW(
        ReverbFilter(48000, 512, std::make_unique<orvane::ReverbImpulseResponse>(&reader), empty.path(), 15),
        orvane::wavNotReadableException);
}

/// From the bytes of a file to the response: entry 56 begins at frame 560, room 15 plays it at 0.02867; at 192 kHz
/// three zeros stand behind every frame.
TEST(ReverbFilter, DrawsTheEntryOfAFileAtFourTimesItsRate) {
    const test::TemporaryFolder folder;
    test::writeBytes(folder.file("OVNdata511.dat"), test::numberedContainer(2000));
    const orvane::FileReader reader;
    ReverbFilter filter(192000, 512, std::make_unique<orvane::ReverbImpulseResponse>(&reader), folder.path(),
                        15);
    EXPECT_EQ(filter.partitionCount(), 213u); // 4 * 27201 frames
    SampleBuffer buffer(2, 214 * 512);
    filter.update(buffer, 100);
    for (std::uint64_t i = 0; i < 4 * 1440; ++i) {
        const std::uint64_t frame = 560 + i / 4;
        const float expected = i % 4 == 0 ? 0.02867f * static_cast<float>(frame + 1) : 0.0f;
        ASSERT_EQ(buffer.channelPointers[0][i], expected) << i;
        ASSERT_EQ(buffer.channelPointers[1][i], -expected) << i;
    }
    EXPECT_THAT(Signal(buffer.channelPointers[0] + 4 * 1440, buffer.channel(0).end()), test::Silence());
}

TEST(ReverbFilter, UpdatesNeitherAllocateNorLock) {
    Filter filter(5000);
    const test::RealtimeScope scope;
    for (const float decay : {100.0f, 75.0f, 75.0f, 49.0f, notANumber})
        filter.filter.update(filter.buffer, decay);
    EXPECT_TRUE(filter.filter.changed());
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
}

} // namespace
