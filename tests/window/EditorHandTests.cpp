// SPDX-License-Identifier: GPL-3.0-or-later
// The way from a person's hand over widget and value to what the host reads, and back. Expected: ranges, steps and reset
// values as the product's description gives them.
#include "Places.h"
#include "WindowFixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;
using namespace std::chrono_literals;

/// One slider with its text and its range.
struct SliderCase {
    std::string parameter;
    Place control;
    Place box;
    double lowest;
    double highest;
    double reset;
    friend void PrintTo(const SliderCase& slider, std::ostream* stream) { *stream << slider.parameter; }
};

const SliderCase ambienceCase{"Ambience", ambience, ambienceText, 0, 100, 50};
const SliderCase focusCase{"Focus", focus, focusText, -100, 100, 0};
const SliderCase rotationCase{"Head Rotation", headRotation, headRotationText, -180, 180, 0};
const SliderCase gainCase{"Master Gain", masterGain, masterGainText, -96, 24, 0};

double valueOf(OpenWindow& opened, const SliderCase& slider) {
    return slider.lowest + normalized(opened.plugin(), slider.parameter) * (slider.highest - slider.lowest);
}

void setByHost(OpenWindow& opened, const SliderCase& slider, double value) {
    const Image before = opened.look();
    setAndSend(opened.plugin(), slider.parameter, std::to_string(value));
    EXPECT_TRUE(opened.waitUntil([&] { return opened.look() != before; }))
        << "the window shows another value";
}

Image seenOf(OpenWindow& opened, const Place& place) {
    return cut(opened.look(), place.x, place.y, place.width, place.height);
}

void typeInto(Person& person, const Place& box, std::string_view typed) {
    person.click(box.middle());
    person.keyDown(XK_Control_L);
    person.tapKey(XK_a);
    person.keyUp(XK_Control_L);
    person.type(typed);
    person.tapKey(XK_Return);
}

class EditorHands : public WindowTest {};

class EverySlider : public WindowTest, public ::testing::WithParamInterface<SliderCase> {};

TEST_P(EverySlider, GoesBackToItsResetValueOnADoubleClickAndOnAnAltClick) {
    const auto& slider = GetParam();
    auto& opened = open();
    const double other = slider.lowest + 0.25 * (slider.highest - slider.lowest);
    setByHost(opened, slider, other);
    opened.act([&](Person& person) { person.doubleClick(slider.control.middle()); });
    EXPECT_NEAR(valueOf(opened, slider), slider.reset, 1e-3) << "double click";
    setByHost(opened, slider, other);
    opened.act([&](Person& person) {
        person.keyDown(XK_Alt_L);
        person.click(slider.control.middle());
        person.keyUp(XK_Alt_L);
    });
    EXPECT_NEAR(valueOf(opened, slider), slider.reset, 1e-3) << "Alt click";
}

TEST_P(EverySlider, FollowsTheWheel) {
    const auto& slider = GetParam();
    auto& opened = open();
    setByHost(opened, slider, slider.lowest + 0.4 * (slider.highest - slider.lowest));
    const double before = valueOf(opened, slider);
    opened.act([&](Person& person) { person.wheel(slider.control.middle(), 2); });
    const double after = valueOf(opened, slider);
    EXPECT_GT(after, before);
    opened.act([&](Person& person) { person.wheel(slider.control.middle(), -2); });
    EXPECT_LT(valueOf(opened, slider), after);
}

TEST_P(EverySlider, TakesATypedValueAndClampsOneOutsideItsRange) {
    const auto& slider = GetParam();
    auto& opened = open();
    opened.act([&](Person& person) { typeInto(person, slider.box, "17"); });
    EXPECT_NEAR(valueOf(opened, slider), 17, 1e-3);
    opened.act([&](Person& person) { typeInto(person, slider.box, "999"); });
    EXPECT_NEAR(valueOf(opened, slider), slider.highest, 1e-3);
    const Image atTheLimit = seenOf(opened, slider.box);
    opened.act([&](Person& person) { typeInto(person, slider.box, "5000"); });
    EXPECT_EQ(seenOf(opened, slider.box), atTheLimit) << "the text snaps back";
    opened.act([&](Person& person) { typeInto(person, slider.box, "-999"); });
    EXPECT_NEAR(valueOf(opened, slider), slider.lowest, 1e-3);
}

TEST_P(EverySlider, TakesNoLettersAndForgetsWhatIsLeftWithEscape) {
    const auto& slider = GetParam();
    auto& opened = open();
    opened.act([&](Person& person) { typeInto(person, slider.box, "a1b2c"); });
    EXPECT_NEAR(valueOf(opened, slider), 12, 1e-3);
    opened.act([&](Person& person) {
        person.click(slider.box.middle());
        person.type("3");
        person.tapKey(XK_Escape);
    });
    EXPECT_NEAR(valueOf(opened, slider), 12, 1e-3);
}

TEST_P(EverySlider, ShowsWhatTheHostSetsAndSendsNothingBack) {
    const auto& slider = GetParam();
    auto& opened = open();
    opened.look();
    const auto edits = opened.plugin().editCount();
    const double first = slider.lowest + 0.25 * (slider.highest - slider.lowest);
    setByHost(opened, slider, first);
    const Image textAtFirst = seenOf(opened, slider.box);
    const Image controlAtFirst = seenOf(opened, slider.control);
    setByHost(opened, slider, slider.highest);
    EXPECT_NE(seenOf(opened, slider.box), textAtFirst);
    EXPECT_NE(seenOf(opened, slider.control), controlAtFirst);
    setByHost(opened, slider, first);
    EXPECT_TRUE(opened.waitUntil([&] { return seenOf(opened, slider.box) == textAtFirst; }));
    EXPECT_TRUE(opened.waitUntil([&] { return seenOf(opened, slider.control) == controlAtFirst; }));
    EXPECT_NEAR(valueOf(opened, slider), first, 1e-3);
    EXPECT_EQ(opened.plugin().editCount(), edits) << "a host's value is not echoed";
}

TEST_P(EverySlider, SendsNoGestures) {
    const auto& slider = GetParam();
    auto& opened = open();
    const Point middle = slider.control.middle();
    opened.act([&](Person& person) { person.drag(middle, {middle.x + 20, middle.y - 20}); });
    EXPECT_GT(opened.plugin().editCount(), 0u);
    EXPECT_EQ(opened.plugin().gestureCount(), 0u);
}

INSTANTIATE_TEST_SUITE_P(OfTheEditor, EverySlider,
                         ::testing::Values(ambienceCase, focusCase, rotationCase, gainCase),
                         [](const auto& instance) {
                             std::string name = instance.param.parameter;
                             std::erase(name, ' ');
                             return name;
                         });

TEST_F(EditorHands, AllSlidersButTheHeadsStopAtTheirLimits) {
    auto& opened = open();
    for (const auto& slider : {ambienceCase, focusCase, gainCase}) {
        const Point middle = slider.control.middle();
        opened.act([&](Person& person) { person.drag(middle, {middle.x + 250, middle.y - 150}); });
        EXPECT_NEAR(valueOf(opened, slider), slider.highest, 1e-3) << slider.parameter;
        opened.act([&](Person& person) {
            person.drag(slider.control.along(0.9), {middle.x - 400, middle.y + 150});
        });
        EXPECT_NEAR(valueOf(opened, slider), slider.lowest, 1e-3) << slider.parameter;
    }
}

TEST_F(EditorHands, TheHeadsDialTurnsOnBeyondItsEnds) {
    auto& opened = open();
    setByHost(opened, rotationCase, 170);
    const Point middle = headRotation.middle();
    opened.act([&](Person& person) { person.drag(middle, {middle.x, middle.y - 30}); });
    EXPECT_LT(valueOf(opened, rotationCase), -90);
    EXPECT_GE(valueOf(opened, rotationCase), -180);
}

TEST_F(EditorHands, AClickOnTheTrackTakesAmbienceThere) {
    auto& opened = open();
    opened.act([](Person& person) { person.click(ambience.along(0.25)); });
    EXPECT_NEAR(valueOf(opened, ambienceCase), 25, 3);
}

TEST_F(EditorHands, FocusLandsOnWholeNumbersThoughItsSliderHasTenths) {
    auto& opened = open();
    opened.act([](Person& person) { person.drag(focus.middle(), focus.along(0.71)); });
    const Image textBefore = seenOf(opened, focusText);
    const double whole = std::round(valueOf(opened, focusCase));
    EXPECT_GT(whole, 20);
    setByHost(opened, focusCase, whole + 10);
    setByHost(opened, focusCase, whole);
    EXPECT_EQ(seenOf(opened, focusText), textBefore);
    const auto chunk = opened.plugin().state().component;
    const std::string state(reinterpret_cast<const char*>(chunk.data()), chunk.size());
    EXPECT_NE(state.find("<Focus Value=\"" + std::to_string(static_cast<int>(whole)) + ".0\""),
              std::string::npos)
        << state;
}

TEST_F(EditorHands, MasterGainTakesTenths) {
    auto& opened = open();
    opened.act([](Person& person) { typeInto(person, masterGainText, "-12.3"); });
    EXPECT_NEAR(valueOf(opened, gainCase), -12.3, 1e-3);
}

TEST_F(EditorHands, ADragWithAModifierIsFiner) {
    auto& opened = open();
    const Point from = masterGain.middle();
    const Point to{from.x, from.y - 45};
    setByHost(opened, gainCase, -40);
    opened.act([&](Person& person) { person.drag(from, to); });
    const double coarse = valueOf(opened, gainCase) + 40;
    setByHost(opened, gainCase, -40);
    opened.act([&](Person& person) {
        person.keyDown(XK_Control_L);
        person.drag(from, to);
        person.keyUp(XK_Control_L);
    });
    const double fine = valueOf(opened, gainCase) + 40;
    EXPECT_GT(coarse, 1);
    EXPECT_GT(fine, 0);
    EXPECT_LT(fine, coarse / 2);
}

TEST_F(EditorHands, AnAnalyticSceneTakesAmbienceFromThePerson) {
    auto& opened = open();
    setAndSend(opened.plugin(), "scene", "Analytic Dry");
    opened.look();
    const double before = valueOf(opened, ambienceCase);
    opened.act([](Person& person) { person.click(ambience.along(0.9)); });
    EXPECT_EQ(valueOf(opened, ambienceCase), before);
    setAndSend(opened.plugin(), "scene", "Mix Room");
    opened.look();
    // at another place, or the two clicks would be a double click
    opened.act([](Person& person) { person.click(ambience.along(0.7)); });
    EXPECT_NEAR(valueOf(opened, ambienceCase), 70, 3);
}

TEST_F(EditorHands, TheWarningCoversTheControlsUntilAPreparationSucceeds) {
    auto& opened = open();
    const Image healthy = opened.look();
    opened.plugin().prepare(22050, 256, ProcessMode::realtime);
    EXPECT_TRUE(opened.waitUntil([&] { return opened.window().screenshot() != healthy; }));
    const double before = valueOf(opened, ambienceCase);
    opened.act([](Person& person) { person.click(ambience.along(0.9)); });
    EXPECT_EQ(valueOf(opened, ambienceCase), before) << "the warning takes the mouse";
    opened.plugin().release();
    opened.plugin().prepare(48000, 256, ProcessMode::realtime);
    opened.act([](Person& person) { person.moveTo({-100, -100}); });
    EXPECT_TRUE(opened.waitUntil([&] { return opened.window().screenshot() == healthy; }));
}

TEST_F(EditorHands, AWindowOpenedAfterAFailedPreparationShowsTheWarning) {
    auto plugin = makePlugin();
    plugin->prepare(22050, 256, ProcessMode::realtime);
    auto& opened = open(std::move(plugin));
    const Image warned = opened.look();
    expectLooksLike(warned, "warning");
    opened.plugin().release();
    opened.plugin().prepare(48000, 256, ProcessMode::realtime);
    EXPECT_TRUE(opened.waitUntil([&] { return opened.window().screenshot() != warned; }));
}

TEST_F(EditorHands, TheVersionIsShownToWhoRestsOnTheLogo) {
    auto& opened = open();
    opened.act([](Person& person) { // the framework shows tips in a window that has had the keys
        person.click(ambienceText.middle());
        person.tapKey(XK_Escape);
    });
    const Image before = opened.look();
    opened.act([](Person& person) { person.moveTo(logo.middle()); });
    const auto differs = [&] { return compare(opened.window().screenshot(), before, 0).largest > 1; };
    EXPECT_TRUE(opened.waitUntil(differs));
    opened.act([](Person& person) { person.moveTo({-100, -100}); });
    EXPECT_TRUE(opened.waitUntil([&] { return !differs(); }));
}

TEST_F(EditorHands, TheWindowIsTheViewWithItsToolbarAndOfFixedSize) {
    auto& opened = open();
    EXPECT_EQ(opened.window().viewSize(), (Size{windowWidth, windowHeight}));
    EXPECT_FALSE(opened.window().resizable());
}

TEST(EditorAtTwiceTheScale, ShowsTheSameWindowTwiceAsLarge) {
    Image plain;
    {
        const VirtualDisplay display;
        OpenWindow opened(makePlugin());
        plain = opened.look();
    }
    const VirtualDisplay display(2 * windowWidth + 200, 2 * windowHeight + 200);
    const auto plugin = makePlugin();
    EditorWindow scaled(*plugin);
    ASSERT_TRUE(scaled.setScale(2));
    EXPECT_EQ(scaled.viewSize(), (Size{2 * windowWidth, 2 * windowHeight}));
    scaled.open();
    const auto half = [&scaled] { return shrink(scaled.screenshot(), 2); };
    // edges and glyphs differ, everything else does not
    EXPECT_TRUE(scaled.pumpUntil(
        [&] { return compare(half(), plain, 64).countBeyond < windowWidth * windowHeight / 50; }, patience));
}

} // namespace
