// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/Stage.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <filesystem>
#include <numbers>

namespace {

using namespace orvane::kestrum;
using namespace orvane::kestrum::pictures;

const Font& font() {
    static const Font lato(std::filesystem::path(KESTRUM_RESOURCES) / "fonts/Lato-Medium.ttf");
    return lato;
}

bool coincident(const StagedSpeaker& a, const StagedSpeaker& b) {
    return a.speaker.azimuth == b.speaker.azimuth && a.speaker.elevation == b.speaker.elevation &&
           a.speaker.lowFrequency == b.speaker.lowFrequency;
}

class EveryLayout : public ::testing::TestWithParam<core::LayoutRow> {};

// The inverse of an ellipse's parameter form, with the table as reference. Half a millionth of a degree is rounding.
TEST_P(EveryLayout, StandsAtTheAzimuthsOfTheTable) {
    const std::vector<StagedSpeaker> speakers = staged(GetParam(), font());
    ASSERT_EQ(speakers.size(), GetParam().speakers.size());
    for (std::size_t channel = 0; channel < speakers.size(); ++channel) {
        const StagedSpeaker& one = speakers[channel];
        if (GetParam().speakers[channel].elevation == 90)
            continue;
        const double x = (one.foot.x - stage::middle.x) / stage::radiusX,
                     z = (stage::middle.y - one.foot.y) / stage::radiusY;
        const double azimuth = std::atan2(x, z) * 180 / std::numbers::pi;
        EXPECT_NEAR(azimuth, GetParam().speakers[channel].azimuth, 5e-7);
        EXPECT_EQ(one.number, std::to_string(channel + 1));
    }
}

TEST_P(EveryLayout, RaisesWhatTheTableRaisesAndNothingElse) {
    for (const StagedSpeaker& one : staged(GetParam(), font())) {
        if (one.speaker.elevation > 0)
            EXPECT_LT(one.place.y, one.foot.y - 100) << one.name;
        else
            EXPECT_DOUBLE_EQ(one.place.y, one.foot.y) << one.name;
        EXPECT_DOUBLE_EQ(one.place.x, one.foot.x);
    }
}

TEST_P(EveryLayout, HidesNeitherLoudspeakerNorLabel) {
    const std::vector<StagedSpeaker> speakers = staged(GetParam(), font());
    for (const StagedSpeaker& one : speakers)
        for (const StagedSpeaker& other : speakers) {
            if (!coincident(one, other)) {
                EXPECT_FALSE(overlap(one.covered, other.covered)) << one.name << " and " << other.name;
            }
            if (&one != &other) {
                EXPECT_FALSE(overlap(one.label, other.label)) << one.name << " and " << other.name;
            }
            EXPECT_FALSE(overlap(one.label, other.covered)) << one.name << " over " << other.name;
        }
}

TEST_P(EveryLayout, StaysInItsPictureAndOffTheListenersHead) {
    constexpr Area picture{0, 0, 1080, 504}, productName{892, 10, 180, 70};
    for (const StagedSpeaker& one : staged(GetParam(), font())) {
        for (const Area& area : {one.label, one.covered}) {
            EXPECT_GE(area.left, picture.left) << one.name;
            EXPECT_GE(area.top, picture.top) << one.name;
            EXPECT_LE(area.left + area.width, picture.left + picture.width) << one.name;
            EXPECT_LE(area.top + area.height, picture.top + picture.height) << one.name;
            EXPECT_FALSE(overlap(area, productName)) << one.name;
        }
        EXPECT_FALSE(overlap(one.label, listenerArea)) << one.name;
    }
}

// Property: whatever stands higher is drawn higher and nearer to the middle, up to what hangs overhead.
TEST(HeightsOfADiagram, AreToldApart) {
    EXPECT_EQ(stage::riseOf(0), 0);
    EXPECT_EQ(stage::radiusOf(0), 1);
    EXPECT_NEAR(stage::radiusOf(90), 0, 1e-6);
    for (const auto& [lower, higher] : {std::pair{0.0, 30.0}, {30.0, 45.0}, {45.0, 90.0}}) {
        EXPECT_GT(stage::riseOf(higher), stage::riseOf(lower) + 15) << "points, at least half a box";
        EXPECT_LT(stage::radiusOf(higher), stage::radiusOf(lower) - 0.05);
    }
}

std::string testName(const testing::TestParamInfo<core::LayoutRow>& info) {
    std::string name;
    for (const char character : info.param.name)
        name += std::isalnum(static_cast<unsigned char>(character)) != 0 ? character : '_';
    return name;
}

INSTANTIATE_TEST_SUITE_P(Diagrams, EveryLayout,
                         ::testing::ValuesIn(core::layoutTable().begin(), core::layoutTable().end()),
                         testName);

} // namespace
