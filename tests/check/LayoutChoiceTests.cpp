// SPDX-License-Identifier: GPL-3.0-or-later
// Expected layouts are counted in the published table of 32; texts are the tool's promises to its user.
#include "check/LayoutChoice.h"

#include "CheckSupport.h"

#include <gmock/gmock.h>

#include <array>
#include <utility>

namespace {

using orvane::kestrum::check::chooseLayout;
using ::test::refusalOf;
using ::testing::HasSubstr;

TEST(LayoutChoice, GuessesOnlyWhereASingleLayoutHasSoManyChannels) {
    const std::array<std::pair<int, const char*>, 4> alone{
        {{1, "1.0"}, {11, "7.0.4"}, {14, "13.1"}, {16, "9.1.6"}}};
    for (const auto& [count, name] : alone)
        EXPECT_EQ(chooseLayout(static_cast<std::uint64_t>(count), std::nullopt), name);
}

TEST(LayoutChoice, AsksWithAllNamesWhereSeveralFit) {
    EXPECT_EQ(refusalOf([] { chooseLayout(6, std::nullopt); }),
              "The mix has 6 channels, which alone does not tell its layout: name \"5.1 Film\", \"5.1 ITU\", "
              "\"5.1 ITU Logic\" or \"6.0\" with --layout.");
    for (const std::uint64_t count : {2u, 4u, 5u, 7u, 8u, 9u, 10u, 12u})
        EXPECT_THAT(refusalOf([count] { chooseLayout(count, std::nullopt); }), HasSubstr("with --layout."));
}

TEST(LayoutChoice, SaysThatNoLayoutHasSoManyChannels) {
    for (const std::uint64_t count : {3u, 13u, 15u})
        EXPECT_THAT(refusalOf([count] { chooseLayout(count, std::nullopt); }),
                    HasSubstr("no layout has so many, so export the mix in another one."));
}

TEST(LayoutChoice, TakesANamedLayoutByEitherOfItsNames) {
    EXPECT_EQ(chooseLayout(6, "5.1 film"), "5.1 Film");
    EXPECT_EQ(chooseLayout(2, "Stereo Wide"), "2.0 +/-45°");
}

TEST(LayoutChoice, RefusesANamedLayoutThatLeavesChannelsOutOrLacksSome) {
    EXPECT_EQ(
        refusalOf([] { chooseLayout(16, "5.1 ITU"); }),
        "The layout \"5.1 ITU\" has 6 channels and the mix has 16 channels: name \"9.1.6\" with --layout.");
    EXPECT_THAT(refusalOf([] { chooseLayout(1, "Quad"); }), HasSubstr("the mix has 1 channel: name \"1.0\""));
}

TEST(LayoutChoice, RefusesANameThatNoLayoutHas) {
    EXPECT_THAT(refusalOf([] { chooseLayout(6, "5.7"); }), HasSubstr("There is no layout \"5.7\""));
}

} // namespace
