// SPDX-License-Identifier: GPL-3.0-or-later
// Expected values follow from the stand-in's parameters: three layouts, two Scenes, a gain from 0 to 2.
#include "render/Controls.h"

#include "StandInPlugin.h"
#include "render/RenderError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using orvane::kestrum::render::Controls;
using orvane::kestrum::render::parseNumber;
using orvane::kestrum::render::RenderError;
using orvane::kestrum::render::test::standInLayouts;
using orvane::kestrum::render::test::StandInPlugin;
using orvane::kestrum::render::test::standInScenes;
using ::testing::HasSubstr;

class ControlsOfTheStandIn : public ::testing::Test {
protected:
    StandInPlugin plugin;
    orvane::kestrum::render::ChoiceTable layouts = standInLayouts();
    orvane::kestrum::render::ChoiceTable scenes = standInScenes();
    Controls controls{plugin, layouts, scenes};

    std::string refusal(const char* parameter, const char* value) const {
        try {
            controls.resolve(parameter, value);
            return "accepted";
        } catch (const RenderError& error) {
            return error.what();
        }
    }
};

TEST_F(ControlsOfTheStandIn, AnEntryBecomesItsShareOfTheSteps) {
    const auto value = controls.resolve("Speaker Layouts", "Two");
    EXPECT_EQ(value.id, StandInPlugin::layoutId);
    EXPECT_EQ(value.normalized, 0.5);
}

TEST_F(ControlsOfTheStandIn, TheNameThatTheMenuShowsMeansTheSameEntry) {
    EXPECT_EQ(controls.resolve("layout", "Solo").normalized, 0.0);
    EXPECT_EQ(controls.resolve("SCENE", "dry a").normalized, 0.0);
}

TEST_F(ControlsOfTheStandIn, OnlyLayoutsAndScenesMakeThePlugInRebuild) {
    EXPECT_TRUE(controls.resolve("layout", "Six").rebuilds);
    EXPECT_TRUE(controls.resolve("scene", "Wet").rebuilds);
    EXPECT_FALSE(controls.resolve("gain", "1").rebuilds);
}

TEST_F(ControlsOfTheStandIn, ALayoutCarriesItsEntryOfTheTable) {
    ASSERT_NE(controls.resolve("layout", "Six").layout, nullptr);
    EXPECT_EQ(controls.resolve("layout", "Six").layout->name, "Six");
    EXPECT_EQ(controls.resolve("scene", "Wet").layout, nullptr);
    EXPECT_EQ(controls.resolve("gain", "1").layout, nullptr);
}

TEST_F(ControlsOfTheStandIn, ANumberBecomesItsShareOfTheRange) {
    EXPECT_EQ(controls.resolve("gain", "0").normalized, 0.0);
    EXPECT_EQ(controls.resolve("gain", "+0.5").normalized, 0.25);
    EXPECT_EQ(controls.resolve("Master Gain", "2").normalized, 1.0);
}

TEST_F(ControlsOfTheStandIn, ANumberOutsideTheRangeIsRefusedWithTheRange) {
    EXPECT_EQ(refusal("gain", "2.1"), "Master Gain 2.1 lies outside its range: choose 0 to 2.");
    EXPECT_EQ(refusal("gain", "-1"), "Master Gain -1 lies outside its range: choose 0 to 2.");
}

TEST_F(ControlsOfTheStandIn, NumbersThatAreNoneAreRefused) {
    for (const char* const text : {"", "loud", "1 dB", "nan", "inf", "1,5", "0x1"})
        EXPECT_THAT(refusal("gain", text), HasSubstr("is no number for Master Gain: write one such as 2.5."))
            << text;
}

TEST_F(ControlsOfTheStandIn, UnknownNamesListTheChoices) {
    EXPECT_EQ(
        refusal("pan", "1"),
        "The plug-in has no parameter \"pan\"; it has: \"Speaker Layouts\", \"Scenes\", \"Master Gain\".");
    EXPECT_EQ(refusal("scene", "Cave"),
              "There is no Scene \"Cave\"; choose one of: \"Dry\" (shown as \"Dry A\"), \"Wet\".");
}

TEST_F(ControlsOfTheStandIn, AnEntryThatThePlugInLacksSpeaksOfAnotherVersion) {
    const orvane::kestrum::render::ChoiceTable newer("layout", {{"Twelve", "Twelve", 12}});
    const Controls mismatched(plugin, newer, scenes);
    EXPECT_THROW(mismatched.resolve("layout", "Twelve"), RenderError);
}

TEST_F(ControlsOfTheStandIn, ThePresentValueIsToldInThePlugInsWords) {
    EXPECT_EQ(controls.currentText("layout"), "One");
    EXPECT_EQ(controls.currentText("gain"), "0.500000");
}

TEST(Numbers, AreReadWithAPointWhateverTheLocale) {
    EXPECT_EQ(parseNumber("-0.25", "x"), -0.25);
    EXPECT_EQ(parseNumber("1e3", "x"), 1000.0);
}

} // namespace
