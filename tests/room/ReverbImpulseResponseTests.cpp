// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/SampleBuffer.h"
#include "data/DataFileExceptions.h"
#include "data/FileReader.h"
#include "room/ReverbContainer.h"
#include "room/ReverbImpulseResponse.h"
#include "support/RealtimeScope.h"
#include "support/WaveFile.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using orvane::ReverbImpulseResponse;
using orvane::SampleBuffer;

struct Loaded {
    Loaded(double sampleRate, std::int32_t fileRate, std::uint32_t roomId) : response(&reader) {
        response.load(sampleRate, fileRate, roomId, "folder/file");
    }
    test::RecordingReader reader;
    ReverbImpulseResponse response;
};

struct ReadCase {
    std::uint32_t room;
    double sampleRate;
    std::int32_t fileRate;
    std::uint32_t entry;
    std::uint64_t floats;
    std::uint64_t frames;
};

class WhatIsRead : public ::testing::TestWithParam<ReadCase> {};

/// By hand from the listed frames: two floats a frame, scaled to the file's rate, then spread to the running one.
TEST_P(WhatIsRead, FollowsTheRoomAndBothRates) {
    const ReadCase& given = GetParam();
    const Loaded loaded(given.sampleRate, given.fileRate, given.room);
    EXPECT_EQ(loaded.reader.path, "folder/file");
    EXPECT_EQ(loaded.reader.tableSize, 60u);
    EXPECT_EQ(loaded.reader.entry, given.entry);
    EXPECT_EQ(loaded.reader.floatCount, given.floats);
    EXPECT_EQ(loaded.response.frames(), given.frames);
}
INSTANTIATE_TEST_SUITE_P(RoomsAndRates, WhatIsRead,
                         ::testing::Values(ReadCase{28, 48000, 48000, 22, 440490, 220245},
                                           ReadCase{28, 44100, 44100, 22, 404700, 202350},
                                           ReadCase{13, 96000, 48000, 28, 44040, 44040},
                                           ReadCase{13, 192000, 48000, 28, 44040, 88080},
                                           ReadCase{24, 176400, 44100, 20, 7526, 15052},
                                           ReadCase{15, 24000, 24000, 56, 27200, 13600},
                                           ReadCase{15, 44100.9, 44100, 56, 49980, 24990},
                                           ReadCase{0, 48000, 48000, 11, 2, 1},
                                           ReadCase{1, 44100, 44100, 11, 2, 1},
                                           ReadCase{1, 96000, 48000, 11, 2, 2},
                                           ReadCase{48, 48000, 48000, 0, 0, 0}));

TEST(ReverbImpulseResponse, IsEmptyUntilItIsLoaded) {
    const test::RecordingReader reader;
    EXPECT_EQ(ReverbImpulseResponse(&reader).frames(), 0u);
}

TEST(ReverbImpulseResponse, CopiesBothEarsScaledByTheRoomsGainAndLeavesTheRest) {
    const Loaded loaded(48000, 48000, 24); // 4096 frames, gain 0.037648
    SampleBuffer buffer(2, 5000);
    std::fill_n(buffer.channelPointers[0], 5000, 7.0f);
    loaded.response.copyTo(buffer);
    for (const std::uint64_t frame : {0u, 1u, 2000u, 4095u}) {
        const auto stored = static_cast<float>(frame + 1);
        EXPECT_EQ(buffer.channelPointers[0][frame], 0.037648f * stored);
        EXPECT_EQ(buffer.channelPointers[1][frame], -0.037648f * stored);
    }
    EXPECT_EQ(buffer.channelPointers[0][4096], 7.0f);
}

/// Deliberate of the stored data: at a multiple of the file's rate there are zeros between the frames.
TEST(ReverbImpulseResponse, AHigherRateSpreadsTheFramesWithZerosBetween) {
    const Loaded loaded(192000, 48000, 24);
    SampleBuffer buffer(2, 4 * 4096);
    loaded.response.copyTo(buffer);
    for (std::uint64_t i = 0; i < 4 * 4096; ++i) {
        const std::uint64_t frame = i / 4;
        const float expected = i % 4 == 0 ? 0.037648f * static_cast<float>(frame + 1) : 0.0f;
        ASSERT_EQ(buffer.channelPointers[0][i], expected) << i;
        ASSERT_EQ(buffer.channelPointers[1][i], -expected) << i;
    }
}

TEST(ReverbImpulseResponse, AShorterBufferTakesWhatFits) {
    const Loaded loaded(48000, 48000, 24);
    SampleBuffer buffer(2, 100);
    loaded.response.copyTo(buffer);
    EXPECT_EQ(buffer.channelPointers[0][99], 0.037648f * 100.0f);
}

TEST(ReverbImpulseResponse, TakesItsOwnEntryFromAFile) {
    const test::TemporaryFolder folder;
    test::writeBytes(folder.file("reverb"), test::numberedContainer(1000));
    const orvane::FileReader reader;
    ReverbImpulseResponse response(&reader);
    response.load(48000, 48000, 25, folder.file("reverb")); // entry 52: from frame 520 on; 4096 frames
    SampleBuffer buffer(2, 4096);
    response.copyTo(buffer);
    EXPECT_EQ(buffer.channelPointers[0][0], 0.21612f * 521.0f);
    EXPECT_EQ(buffer.channelPointers[1][479], 0.21612f * -1000.0f);
    EXPECT_EQ(buffer.channelPointers[0][480], 0.0f) << "the file ends; its tail is silent";
    EXPECT_EQ(response.frames(), 4096u);
}

TEST(ReverbImpulseResponse, AMissingFileIsNotReadable) {
    const orvane::FileReader reader;
    ReverbImpulseResponse response(&reader);
    EXPECT_THROW(response.load(48000, 48000, 15, "/nowhere/at/all"), orvane::wavNotReadableException);
}

TEST(ReverbImpulseResponse, CopyingNeitherAllocatesNorLocks) {
    const Loaded loaded(96000, 48000, 24);
    SampleBuffer buffer(2, 8192);
    const test::RealtimeScope scope;
    loaded.response.copyTo(buffer);
    EXPECT_EQ(loaded.response.frames(), 8192u);
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
}

} // namespace
