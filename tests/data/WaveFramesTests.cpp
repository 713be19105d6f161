// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/WaveFrames.h"

#include "data/DataFileExceptions.h"
#include "data/DiskFile.h"
#include "support/WaveFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <filesystem>
#include <initializer_list>
#include <limits>

#include <sys/stat.h>

namespace {

using test::waveBytes;
using ::testing::ElementsAre;

class WaveFrames : public ::testing::Test {
protected:
    std::vector<float> read(const std::string& bytes, std::uint64_t frames, std::uint16_t channels = 2,
                            std::size_t room = 4) {
        test::writeBytes(folder.file("wave"), bytes);
        std::vector<float> samples(room, 9.0f);
        orvane::readWaveFrames(describe("wave"), samples, frames, channels);
        return samples;
    }

    orvane::DiskFile describe(const std::string& name) const {
        return {folder.file(name), 48000.0, false, 48000, 0};
    }

    test::TemporaryFolder folder;
    const std::vector<float> four{0.5f, -0.25f, 3.0f, 1e-40f};
};

TEST_F(WaveFrames, FloatsArriveBitByBitAndTheRoomBehindThemStaysAsItIs) {
    EXPECT_THAT(read(waveBytes({}, four), 2, 2, 5), ElementsAre(0.5f, -0.25f, 3.0f, 1e-40f, 9.0f));
}

TEST_F(WaveFrames, NotANumberIsHandedOnUnchanged) {
    const float strange = std::bit_cast<float>(std::uint32_t{0xffc12345});
    EXPECT_EQ(std::bit_cast<std::uint32_t>(read(waveBytes({}, std::vector<float>{strange, 0}), 1)[0]),
              0xffc12345u);
}

// Expected values: the definition, value / 32768, exact for every 16-bit integer but for the printed
// constant, which as a 32-bit float is 2^-15 itself.
TEST_F(WaveFrames, IntegersOf16BitsBecomeFractionsOfFullScale) {
    const std::vector<std::int16_t> stored{-32768, 32767, 1, 0};
    EXPECT_THAT(read(waveBytes({.formatTag = 1, .bits = 16}, stored), 2),
                ElementsAre(-1.0f, 32767.0f / 32768.0f, 1.0f / 32768.0f, 0.0f));
}

TEST_F(WaveFrames, TheFormatTagIsNotLookedAt) {
    EXPECT_THAT(read(waveBytes({.formatTag = 1}, four), 2), ElementsAre(0.5f, -0.25f, 3.0f, 1e-40f));
}

TEST_F(WaveFrames, FewerFramesThanTheFileHoldsAreItsFirst) {
    EXPECT_THAT(read(waveBytes({}, four), 1), ElementsAre(0.5f, -0.25f, 9.0f, 9.0f));
}

TEST_F(WaveFrames, AChunkWithoutTheLetterInFrontOfTheDataIsPassedOver) {
    const std::string chunk = "LIST" + test::bytesOf(std::uint32_t{4}) + "abce";
    EXPECT_THAT(read(waveBytes({.chunksBeforeData = chunk}, four), 2),
                ElementsAre(0.5f, -0.25f, 3.0f, 1e-40f));
}

// The search goes for the single letter: the 4 bytes that are then taken for the size are zeros of that
// chunk.
TEST_F(WaveFrames, AChunkWithTheLetterInFrontOfTheDataMisleadsTheSearch) {
    const std::string chunk = "idea" + test::bytesOf(std::uint32_t{4}) + std::string(4, '\0');
    EXPECT_THROW(read(waveBytes({.chunksBeforeData = chunk}, four), 2), orvane::wavChunckSizeShortException);
}

TEST_F(WaveFrames, AMissingFileIsNotFound) {
    std::vector<float> samples(4);
    EXPECT_THROW(orvane::readWaveFrames(describe("missing"), samples, 1, 2),
                 orvane::sampleRateFileNotFoundException);
}

TEST_F(WaveFrames, AFolderInTheFilesPlaceIsNotReadable) {
    std::filesystem::create_directory(folder.file("folder"));
    std::vector<float> samples(4);
    EXPECT_THROW(orvane::readWaveFrames(describe("folder"), samples, 1, 2), orvane::wavNotReadableException);
}

TEST_F(WaveFrames, AWrongChannelCountIsToldBeforeAnySize) {
    EXPECT_THROW(read(waveBytes({.channels = 1, .dataSize = 0}, four), 2),
                 orvane::numberOfChannelsMismatchException);
}

TEST_F(WaveFrames, ADataChunkThatClaimsTooLittleIsTooShort) {
    EXPECT_THROW(read(waveBytes({.dataSize = 15}, four), 2), orvane::wavChunckSizeShortException);
    EXPECT_THROW(read(waveBytes({.dataSize = -1}, four), 2), orvane::wavChunckSizeShortException);
    EXPECT_THROW(read(waveBytes({.dataSize = std::numeric_limits<std::int32_t>::min()}, four), 2),
                 orvane::wavChunckSizeShortException);
}

TEST_F(WaveFrames, AFileThatEndsBeforeTheSamplesItClaimsIsNotReadable) {
    EXPECT_THROW(read(waveBytes({.dataSize = 1 << 30}, four), 3, 2, 6), orvane::wavNotReadableException);
}

TEST_F(WaveFrames, MoreFramesThanAnyFileCanHoldAreRefusedWithoutOverflow) {
    EXPECT_THROW(read(waveBytes({}, four), std::uint64_t{1} << 63), orvane::wavChunckSizeShortException);
    EXPECT_THROW(read(waveBytes({}, four), std::numeric_limits<std::uint64_t>::max()),
                 orvane::wavChunckSizeShortException);
}

TEST_F(WaveFrames, TwentyFourBitsAreTheWrongWidthOnlyWhenTheFileIsLongEnough) {
    EXPECT_THROW(read(waveBytes({.bits = 24}, four), 2), orvane::wavBitWrongException);
    EXPECT_THROW(read(waveBytes({.bits = 24}, four), 3, 2, 6), orvane::wavChunckSizeShortException);
}

TEST_F(WaveFrames, WidthsBelowAByteAreWrongAndDivideNothing) {
    for (const std::uint16_t bits : std::initializer_list<std::uint16_t>{0, 1, 7})
        EXPECT_THROW(read(waveBytes({.bits = bits}, four), 2), orvane::wavBitWrongException) << bits;
}

TEST_F(WaveFrames, TheSearchForTheDataEndsWithTheFile) {
    std::string bytes = waveBytes({}, std::vector<float>{});
    bytes.resize(36);
    EXPECT_THROW(read(bytes, 1), orvane::wavNotReadableException);
    EXPECT_THROW(read(bytes + std::string(5000, 'x'), 1), orvane::wavNotReadableException);
}

/// A file may have any size: the search takes no longer for a larger one.
TEST_F(WaveFrames, TheSearchForTheDataEndsAfterAMegabyte) {
    constexpr std::size_t header = 36;
    const std::string whole = waveBytes({}, four);
    const auto withGap = [&](std::size_t gap) {
        return whole.substr(0, header) + std::string(gap, '\0') + whole.substr(header);
    };
    EXPECT_EQ(read(withGap((1 << 20) - 1), 2), four);
    EXPECT_THROW(read(withGap(1 << 20), 2), orvane::wavNotReadableException);
}

// A pipe would be waited for, for ever, and a device need not end.
TEST_F(WaveFrames, WhatIsNoFileIsNotReadable) {
    std::vector<float> samples(4);
    ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
    std::filesystem::create_directory(folder.file("folder"));
    std::filesystem::create_symlink("/dev/zero", folder.file("device"));
    for (const char* const name : {"pipe", "folder", "device"})
        EXPECT_THROW(orvane::readWaveFrames(describe(name), samples, 2, 2), orvane::wavNotReadableException)
            << name;
}

TEST_F(WaveFrames, ALinkToAFileIsThatFile) {
    test::writeBytes(folder.file("stored"), waveBytes({}, four));
    std::filesystem::create_symlink(folder.file("stored"), folder.file("link"));
    std::vector<float> samples(4);
    orvane::readWaveFrames(describe("link"), samples, 2, 2);
    EXPECT_EQ(samples, four);
}

TEST_F(WaveFrames, EveryFileThatIsCutInsideItsHeaderIsRefused) {
    const std::string whole = waveBytes({}, four);
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_THROW(read(whole.substr(0, size), 2), orvane::wavNotReadableException) << size;
}

// Expected values from here on: the definition, each frame at toRate / fromRate times its place.
TEST(ZeroStuff, DoublesTheRateOfOneChannel) {
    std::vector<float> samples{1, 2, 3, 4, 0, 0, 0, 0};
    orvane::zeroStuff(samples, 48000, 96000, 1);
    EXPECT_THAT(samples, ElementsAre(1, 0, 2, 0, 3, 0, 4, 0));
}

TEST(ZeroStuff, QuadruplesTheRateOfStereoFrames) {
    std::vector<float> samples{1, 2, 3, 4, 5, 6};
    samples.resize(24);
    orvane::zeroStuff(samples, 44100, 176400, 2);
    EXPECT_THAT(samples, ElementsAre(1, 2, 0, 0, 0, 0, 0, 0, 3, 4, 0, 0, 0, 0, 0, 0, 5, 6, 0, 0, 0, 0, 0, 0));
}

TEST(ZeroStuff, LeavesEqualAndLowerRatesAlone) {
    std::vector<float> samples{1, 2, 3, 4};
    orvane::zeroStuff(samples, 44100, 44100, 2);
    orvane::zeroStuff(samples, 44100, 24000, 2);
    EXPECT_THAT(samples, ElementsAre(1, 2, 3, 4));
}

TEST(ZeroStuff, MovesNothingWhenThereIsOneFrame) {
    std::vector<float> samples{1, 2, 0, 0, 0, 0, 0, 0};
    orvane::zeroStuff(samples, 44100, 176400, 2);
    EXPECT_THAT(samples, ElementsAre(1, 2, 0, 0, 0, 0, 0, 0));
}

TEST(ZeroStuff, CutsARatioDownThatIsNotWhole) {
    std::vector<float> samples{1, 2, 0, 0};
    orvane::zeroStuff(samples, 44100, 96000, 1);
    EXPECT_THAT(samples, ElementsAre(1, 0, 2, 0));
}

TEST(ZeroStuff, LeavesTheRestOfTheLastGroupUntouched) {
    std::vector<float> samples{1, 2, 0, 7};
    orvane::zeroStuff(samples, 1, 2, 1);
    EXPECT_THAT(samples, ElementsAre(1, 0, 2, 7));
}

TEST(ZeroStuff, TakesAnEmptyVectorAndMeaninglessArguments) {
    std::vector<float> none;
    orvane::zeroStuff(none, 48000, 96000, 2);
    EXPECT_TRUE(none.empty());
    std::vector<float> samples{1, 2};
    orvane::zeroStuff(samples, 0, 96000, 1);
    orvane::zeroStuff(samples, 48000, 96000, 0);
    EXPECT_THAT(samples, ElementsAre(1, 2));
}

} // namespace
