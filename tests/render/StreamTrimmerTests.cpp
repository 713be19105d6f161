// SPDX-License-Identifier: GPL-3.0-or-later
// Expected frames are counted by hand; the floor is 90 dB under the peak, 3.16e-5 of it.
#include "render/StreamTrimmer.h"

#include "StandInPlugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace {

using orvane::kestrum::render::StreamTrimmer;
using orvane::kestrum::render::test::MemorySink;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Pushes a mono list as stereo, `step` frames at a time.
void push(StreamTrimmer& trimmer, const std::vector<float>& frames, std::size_t step) {
    for (std::size_t first = 0; first < frames.size(); first += step) {
        std::vector<float> stereo;
        for (std::size_t index = first; index < std::min(first + step, frames.size()); ++index)
            stereo.insert(stereo.end(), {frames[index], frames[index]});
        trimmer.push(stereo);
    }
}

class CutsOfTheStream : public ::testing::TestWithParam<std::size_t> {};

TEST_P(CutsOfTheStream, TheDelayGoesAndTheTailStaysUpToItsLastFrameAboveTheFloor) {
    MemorySink sink;
    StreamTrimmer trimmer({3, 4, 2, 100}, sink);
    //              delay    | input     | tail: 4e-5 is above the floor, 1e-5 under it
    push(trimmer, {9, 9, 9, 1, 0, 0, 0, 0.5f, 0, 4e-5f, 1e-5f, 0}, GetParam());
    EXPECT_TRUE(trimmer.finished());
    trimmer.close();
    EXPECT_THAT(sink.left(), ElementsAre(1, 0, 0, 0, 0.5f, 0, 4e-5f));
    EXPECT_EQ(trimmer.written(), 7u);
}
INSTANTIATE_TEST_SUITE_P(PiecesOfAnyLength, CutsOfTheStream, ::testing::Values(1, 2, 3, 5, 12));

TEST(StreamTrimmer, IsNotFinishedBeforeTheInputIsOutHoweverQuietItIs) {
    MemorySink sink;
    StreamTrimmer trimmer({2, 5, 2, 100}, sink);
    push(trimmer, {0, 0, 1, 0, 0, 0}, 1);
    EXPECT_FALSE(trimmer.finished());
    push(trimmer, {0}, 1);
    EXPECT_TRUE(trimmer.finished());
}

TEST(StreamTrimmer, ATailThatDoesNotEndIsCutAtItsBound) {
    MemorySink sink;
    StreamTrimmer trimmer({0, 1, 2, 3}, sink);
    push(trimmer, {1, 1, 1, 1, 1, 1}, 2);
    EXPECT_TRUE(trimmer.finished());
    trimmer.close();
    EXPECT_EQ(sink.left().size(), 4u);
}

TEST(StreamTrimmer, SilenceKeepsTheInputsLength) {
    MemorySink sink;
    StreamTrimmer trimmer({2, 3, 2, 100}, sink);
    push(trimmer, std::vector<float>(10), 4);
    EXPECT_TRUE(trimmer.finished());
    trimmer.close();
    EXPECT_THAT(sink.left(), ElementsAre(0, 0, 0));
}

TEST(StreamTrimmer, AnInputWithoutFramesGivesNone) {
    MemorySink sink;
    StreamTrimmer trimmer({2, 0, 1, 100}, sink);
    push(trimmer, std::vector<float>(3), 1);
    EXPECT_TRUE(trimmer.finished());
    trimmer.close();
    EXPECT_THAT(sink.samples, IsEmpty());
}

} // namespace
