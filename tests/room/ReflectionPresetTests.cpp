// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/ListedRooms.h"
#include "room/ReflectionPresetFactory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace {

using orvane::ReflectionPreset;
using ::testing::Each;
using ::testing::IsEmpty;

ReflectionPreset presetOf(std::int32_t roomId) { return orvane::ReflectionPresetFactory().create(roomId); }

class ListedRoom : public ::testing::TestWithParam<listed::Room> {};

TEST_P(ListedRoom, IsThePresetOfItsId) {
    const listed::Room& room = GetParam();
    const ReflectionPreset preset = presetOf(room.id);
    EXPECT_EQ(preset.length, room.length);
    EXPECT_EQ(preset.count, room.count);
    EXPECT_EQ(preset.gain, room.gain);
    EXPECT_EQ(preset.roomSize, room.size);
    EXPECT_EQ(preset.delays, listed::numbers<std::int16_t>(room.delays));
    EXPECT_EQ(preset.levels, listed::numbers<float>(room.levels));

    const std::string usual = room.id == 1 ? "" : std::string(listed::usualDirections);
    const auto directions = listed::numbers<std::int16_t>(usual + " " + std::string(room.directions));
    ASSERT_EQ(directions.size(), 2 * room.count);
    for (std::size_t i = 0; i < room.count; ++i) {
        EXPECT_EQ(preset.azimuths[i], directions[2 * i]) << i;
        EXPECT_EQ(preset.elevations[i], directions[2 * i + 1]) << i;
        EXPECT_EQ(preset.filters[i], i < 6 ? 0 : room.laterFilter) << i;
    }
}

TEST_P(ListedRoom, HasFiveVectorsOfOneSize) {
    const ReflectionPreset preset = presetOf(GetParam().id);
    EXPECT_EQ(preset.azimuths.size(), preset.count);
    EXPECT_EQ(preset.elevations.size(), preset.count);
    EXPECT_EQ(preset.delays.size(), preset.count);
    EXPECT_EQ(preset.levels.size(), preset.count);
    EXPECT_EQ(preset.filters.size(), preset.count);
}
INSTANTIATE_TEST_SUITE_P(OfTheTable, ListedRoom, ::testing::ValuesIn(listed::rooms),
                         [](const auto& room) { return "Room" + std::to_string(room.param.id); });

class RoomOutsideTheTable : public ::testing::TestWithParam<std::int32_t> {};

TEST_P(RoomOutsideTheTable, HasNoReflectionsButASize) {
    const ReflectionPreset preset = presetOf(GetParam());
    EXPECT_EQ(preset.length, 0u);
    EXPECT_EQ(preset.count, 0u);
    EXPECT_EQ(preset.gain, 0.0f);
    EXPECT_THAT(preset.azimuths, IsEmpty());
    EXPECT_THAT(preset.elevations, IsEmpty());
    EXPECT_THAT(preset.delays, IsEmpty());
    EXPECT_THAT(preset.levels, IsEmpty());
    EXPECT_THAT(preset.filters, IsEmpty());
    EXPECT_EQ(preset.roomSize, (std::array<float, 6>{2.2f, 1.9f, 3.0f, 1.5f, 2.5f, 2.7f}));
}
INSTANTIATE_TEST_SUITE_P(OnBothSidesOfIt, RoomOutsideTheTable,
                         ::testing::Values(0, 48, -1, 1000, std::numeric_limits<std::int32_t>::max(),
                                           std::numeric_limits<std::int32_t>::min()));

TEST(ReflectionPreset, TwentyEightRoomsHaveSixReflectionsFromTheUsualDirections) {
    int rooms = 0;
    for (std::int32_t id = 1; id <= 47; ++id) {
        const ReflectionPreset preset = presetOf(id);
        rooms += preset.azimuths == std::vector<std::int16_t>{-5, 5, 10, -175, -70, 75} &&
                 preset.elevations == std::vector<std::int16_t>{60, -30, 0, 0, 0, 5};
    }
    EXPECT_EQ(rooms, 28);
}

TEST(ReflectionPreset, TheCarsAreTheShortestAndHaveTen) {
    for (std::int32_t id = 1; id <= 47; ++id) {
        const bool isCar = id == 24 || id == 25;
        if (isCar)
            EXPECT_EQ(presetOf(id).length, 1024u);
        else
            EXPECT_GT(presetOf(id).length, 1024u) << id;
    }
    EXPECT_EQ(presetOf(24).count, 10u);
}

/// The renderers index their two filters by it.
TEST(ReflectionPreset, NoRoomAsksForAThirdFilter) {
    for (std::int32_t id = 1; id <= 47; ++id)
        EXPECT_THAT(presetOf(id).filters, Each(::testing::Le(1u))) << id;
}

TEST(ReflectionPreset, EachCallGivesACopyOfItsOwn) {
    const orvane::ReflectionPresetFactory factory;
    ReflectionPreset changed = factory.create(15);
    changed.delays[0] = 0;
    EXPECT_EQ(factory.create(15).delays[0], 181);
}

} // namespace
