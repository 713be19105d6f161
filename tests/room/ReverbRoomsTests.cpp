// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/ListedRooms.h"
#include "room/ReverbRooms.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <set>
#include <string>

namespace {

using orvane::reverbFrames;
using orvane::reverbRoom;

class ListedReverb : public ::testing::TestWithParam<listed::Reverb> {};

TEST_P(ListedReverb, IsTheReverbOfItsRoom) {
    const orvane::ReverbRoom room = reverbRoom(GetParam().id);
    EXPECT_EQ(room.entry, GetParam().entry);
    EXPECT_EQ(room.frames, GetParam().frames);
    EXPECT_EQ(room.gain, GetParam().gain);
}

/// Exact: 44100 / 48000 = 147 / 160, truncated. The one frame of a room without reverb stays one.
TEST_P(ListedReverb, HasItsFramesScaledToTheFilesRate) {
    const listed::Reverb& room = GetParam();
    const bool isPlaceholder = room.id < 2;
    EXPECT_EQ(reverbFrames(room.id, 48000), room.frames);
    EXPECT_EQ(reverbFrames(room.id, 44100), isPlaceholder ? 1 : room.frames * 147 / 160);
    EXPECT_EQ(reverbFrames(room.id, 24000), isPlaceholder ? 1 : room.frames / 2);
}
INSTANTIATE_TEST_SUITE_P(OfTheTable, ListedReverb, ::testing::ValuesIn(listed::reverbs),
                         [](const auto& room) { return "Room" + std::to_string(room.param.id); });

TEST(ReverbRooms, TheLongestOneHasTheseFramesAt44100Hertz) { EXPECT_EQ(reverbFrames(28, 44100), 202350u); }

TEST(ReverbRooms, ARoomOutsideTheTableHasNoReverb) {
    for (const std::uint32_t id : {48u, 1000u, std::numeric_limits<std::uint32_t>::max()}) {
        EXPECT_EQ(reverbRoom(id).entry, 0u) << id;
        EXPECT_EQ(reverbRoom(id).gain, 0.0f) << id;
        EXPECT_EQ(reverbFrames(id, 48000), 0u) << id;
    }
}

TEST(ReverbRooms, EveryRoomWithReverbHasAnEntryOfItsOwn) {
    std::set<std::uint32_t> entries;
    for (std::uint32_t id = 2; id <= 47; ++id)
        entries.insert(reverbRoom(id).entry);
    EXPECT_EQ(entries.size(), 46u);
    EXPECT_EQ(*entries.begin(), 15u);
    EXPECT_EQ(*entries.rbegin(), orvane::reverbTableSize);
}

} // namespace
