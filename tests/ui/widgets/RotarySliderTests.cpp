// SPDX-License-Identifier: GPL-3.0-or-later
#include "Resources.h"
#include "ui/widgets/OffScreen.h"
#include "ui/widgets/RotarySliders.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <memory>

namespace {

struct Dial {
    const char* name;
    std::function<std::unique_ptr<juce::Slider>()> make;
    juce::Range<double> range;
    double reset;
    float startAngle;
    float endAngle;
    bool stopsAtEnd;
    const char* pointer;
    int pointerSize;
    const char* ring;
    int ringSize;
    bool centred;
    int pixels; ///< Of the pointer's picture, along each side.
};

template <typename Kind>
std::function<std::unique_ptr<juce::Slider>()> make() {
    return [] { return std::make_unique<Kind>("A dial"); };
}

#define PICTURE(name) resources::name##_png, resources::name##_pngSize

constexpr float gainStart = 3.839724f;
constexpr float gainEnd = 8.604474f;
constexpr float plainStart = 3.926991f;
constexpr float plainEnd = 8.63938f;

const Dial dials[]{
    {"RotarySliderGainBig",
     make<orvane::RotarySliderGainBig>(),
     {-96, 24},
     0,
     gainStart,
     gainEnd,
     true,
     PICTURE(rotary_big_pointer),
     PICTURE(rotary_big_ring),
     false,
     216},
    {"RotarySliderGain",
     make<orvane::RotarySliderGain>(),
     {-96, 24},
     0,
     gainStart,
     gainEnd,
     true,
     PICTURE(rotary_pointer),
     PICTURE(rotary_ring),
     false,
     144},
    {"RotarySlider",
     make<orvane::RotarySlider>(),
     {0, 1},
     0,
     plainStart,
     plainEnd,
     true,
     PICTURE(rotary_pointer),
     PICTURE(rotary_ring),
     false,
     144},
    {"RotarySliderCentered",
     make<orvane::RotarySliderCentered>(),
     {0, 1},
     0.5,
     plainStart,
     plainEnd,
     true,
     PICTURE(rotary_pointer),
     PICTURE(rotary_ring),
     true,
     144},
    {"RotarySliderFullCircle",
     make<orvane::RotarySliderFullCircle>(),
     {0, 1},
     0.5,
     plainStart,
     plainEnd,
     false,
     PICTURE(rotary_pointer),
     PICTURE(rotary_full_circle_ring),
     true,
     144},
    {"RotarySliderSmallGain",
     make<orvane::RotarySliderSmallGain>(),
     {-96, 24},
     0,
     gainStart,
     gainEnd,
     true,
     PICTURE(rotary_small_pointer),
     PICTURE(rotary_small_ring),
     false,
     72},
    {"RotarySliderSmallGainOffset",
     make<orvane::RotarySliderSmallGainOffset>(),
     {-25, 15},
     0,
     gainStart,
     gainEnd,
     false,
     PICTURE(rotary_small_pointer),
     PICTURE(rotary_small_ring),
     false,
     72},
    {"RotarySliderSmall",
     make<orvane::RotarySliderSmall>(),
     {0, 1},
     0,
     plainStart,
     plainEnd,
     true,
     PICTURE(rotary_small_pointer),
     PICTURE(rotary_small_ring),
     false,
     72},
    {"RotarySliderCenteredSmall",
     make<orvane::RotarySliderCenteredSmall>(),
     {0, 1},
     0.5,
     plainStart,
     plainEnd,
     true,
     PICTURE(rotary_small_pointer),
     PICTURE(rotary_small_ring),
     true,
     72},
};

void PrintTo(const Dial& dial, std::ostream* stream) { *stream << dial.name; }

/// The rule for one pixel of a ring, as it is stated.
bool shows(int px, int py, int w, int h, float startAngle, float angle, bool centred) {
    const int halfWidth = w / 2;
    const int halfHeight = h / 2;
    const float dx = static_cast<float>(px) - static_cast<float>(halfWidth);
    const float dy = static_cast<float>(halfHeight) - static_cast<float>(py);
    float a = std::atan2(-dx, -dy);
    if (a < 0.0f)
        a += 6.2831855f;
    const float t = a - startAngle + 3.1415927f;
    if (!centred)
        return angle - startAngle >= t;
    const float s = angle < 6.2831855f ? 1.0f : -1.0f;
    return s * t > (angle - startAngle) * s && (6.2831855f - startAngle) * s > s * t;
}

juce::Image shownRing(const Dial& dial, float startAngle, float angle) {
    auto ring = test::decoded(dial.ring, dial.ringSize);
    for (int px = 0; px < ring.getWidth(); ++px)
        for (int py = 0; py < ring.getHeight(); ++py)
            if (!shows(px, py, ring.getWidth(), ring.getHeight(), startAngle, angle, dial.centred))
                ring.multiplyAlphaAt(px, py, 0.0f);
    return ring;
}

/// What a dial has to look like, drawn pixel by pixel.
juce::Image expected(const Dial& dial, int size, float scale, float startAngle, float endAngle,
                     double proportion, bool enabled) {
    const auto pixels = juce::roundToInt(static_cast<float>(size) * scale);
    juce::Image image(juce::Image::ARGB, pixels, pixels, true);
    juce::Graphics g(image);
    g.addTransform(juce::AffineTransform::scale(scale));
    const float angle = startAngle + static_cast<float>(proportion) * (endAngle - startAngle);
    const auto area = juce::Rectangle<int>(size, size).toFloat();
    if (enabled)
        g.drawImage(shownRing(dial, startAngle, angle), area);
    const float middle = static_cast<float>(size) * 0.5f;
    g.addTransform(juce::AffineTransform::rotation(angle, middle, middle));
    g.drawImage(test::decoded(dial.pointer, dial.pointerSize), area);
    return image;
}

/// Expected values: the family's table, and the pixel rule worked out here.
class RotaryFamily : public ::testing::TestWithParam<Dial> {
protected:
    std::unique_ptr<juce::Slider> slider = GetParam().make();
    int size = GetParam().pixels / 2;

    void SetUp() override { slider->setSize(size, size); }
    void moveTo(double proportion) {
        slider->setValue(GetParam().range.getStart() + proportion * GetParam().range.getLength(),
                         juce::dontSendNotification);
    }
    double proportion() const { return slider->valueToProportionOfLength(slider->getValue()); }
};

TEST_P(RotaryFamily, HasTheRangeAnglesAndEndsOfItsKind) {
    EXPECT_EQ(slider->getRange(), GetParam().range);
    EXPECT_EQ(slider->getRotaryParameters().startAngleRadians, GetParam().startAngle);
    EXPECT_EQ(slider->getRotaryParameters().endAngleRadians, GetParam().endAngle);
    EXPECT_EQ(slider->getRotaryParameters().stopAtEnd, GetParam().stopsAtEnd);
    EXPECT_EQ(slider->getSliderStyle(), juce::Slider::RotaryHorizontalVerticalDrag);
    EXPECT_EQ(slider->getTextBoxPosition(), juce::Slider::NoTextBox);
    EXPECT_EQ(slider->getName(), "A dial");
    EXPECT_FALSE(slider->getWantsKeyboardFocus());
}

TEST_P(RotaryFamily, SharesOneLookAmongAllOfItsKindAlone) {
    const auto& look = slider->getLookAndFeel();
    for (const Dial& dial : dials)
        EXPECT_EQ(&dial.make()->getLookAndFeel() == &look, dial.name == GetParam().name) << dial.name;
}

TEST_P(RotaryFamily, GoesBackToItsResetValueAtADoubleClickAndAtAnAltClick) {
    for (const bool byDoubleClick : {true, false}) {
        moveTo(0.9);
        const auto event = test::mouse(
            *slider, {5, 5},
            juce::ModifierKeys(juce::ModifierKeys::leftButtonModifier |
                               (byDoubleClick ? 0 : static_cast<int>(juce::ModifierKeys::altModifier))));
        if (byDoubleClick)
            slider->mouseDoubleClick(event);
        else
            slider->mouseDown(event);
        EXPECT_EQ(slider->getValue(), GetParam().reset) << byDoubleClick;
    }
}

TEST_P(RotaryFamily, ShowsExactlyTheRingThatThePixelRuleLeaves) {
    for (const float scale : {1.0f, 2.0f})
        for (const double position : {0.0, 0.1, 0.4999, 0.5, 0.73, 1.0}) {
            moveTo(position);
            EXPECT_TRUE(test::samePixels(test::shot(*slider, scale),
                                         expected(GetParam(), size, scale, GetParam().startAngle,
                                                  GetParam().endAngle, proportion(), true)))
                << position << " at " << scale;
        }
}

TEST_P(RotaryFamily, ShowsThePointerAloneWhileDisabled) {
    moveTo(0.8);
    slider->setEnabled(false);
    EXPECT_TRUE(test::samePixels(test::shot(*slider), expected(GetParam(), size, 1.0f, GetParam().startAngle,
                                                               GetParam().endAngle, proportion(), false)));
}

TEST_P(RotaryFamily, DrawsTheSameWhenItIsDrawnAgain) {
    moveTo(0.3);
    const auto first = test::shot(*slider);
    moveTo(0.9);
    static_cast<void>(test::shot(*slider));
    moveTo(0.3);
    EXPECT_TRUE(test::samePixels(test::shot(*slider), first));
}

INSTANTIATE_TEST_SUITE_P(AllNineKinds, RotaryFamily, ::testing::ValuesIn(dials),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(RotarySliders, ShowNoRingInTheMiddleOfACentredOne) {
    for (const Dial& dial : dials) {
        if (!dial.centred)
            continue;
        const float middle = dial.startAngle + 0.5f * (dial.endAngle - dial.startAngle);
        EXPECT_EQ(test::visiblePixels(shownRing(dial, dial.startAngle, middle)), 0) << dial.name;
        const auto slider = dial.make();
        slider->setSize(dial.pixels / 2, dial.pixels / 2);
        slider->setValue(0.5);
        EXPECT_TRUE(
            test::samePixels(test::shot(*slider), expected(dial, dial.pixels / 2, 1.0f, dial.startAngle,
                                                           dial.endAngle, 0.5, false)))
            << dial.name;
    }
}

TEST(RotarySliders, ShowNoRingAtZeroDegreesOfAFullTurn) {
    orvane::RotarySliderFullCircle slider("Turn");
    slider.setSize(72, 72);
    slider.setRange(-180, 180, 1);
    slider.setRotaryParameters(3.1415927f, 9.424778f, false);
    slider.setValue(0);
    EXPECT_TRUE(test::samePixels(test::shot(slider),
                                 expected(dials[4], 72, 1.0f, 3.1415927f, 9.424778f, 0.5, false)));
    slider.setValue(-90); // and a quarter of it a quarter further
    EXPECT_GT(test::visiblePixels(shownRing(dials[4], 3.1415927f, 4.712389f)), 0);
    EXPECT_TRUE(test::samePixels(test::shot(slider),
                                 expected(dials[4], 72, 1.0f, 3.1415927f, 9.424778f, 0.25, true)));
}

TEST(RotarySliders, BeginInTheMiddleIfTheyAreOfTheFullCircle) {
    EXPECT_EQ(orvane::RotarySliderFullCircle("Turn").getValue(), 0.5);
}

TEST(RotarySliders, RunOnOverTheEndOnlyIfTheyDoNotStopThere) {
    orvane::RotarySliderFullCircle running("Running");
    orvane::RotarySlider stopping("Stopping");
    for (juce::Slider* const slider :
         {static_cast<juce::Slider*>(&running), static_cast<juce::Slider*>(&stopping)}) {
        slider->setSize(72, 72);
        slider->setValue(0.9);
        test::drag(*slider, {10, 0}, 5); // 50 of the 250 pixels that the whole range takes
    }
    EXPECT_NEAR(running.getValue(), 0.1, 1e-9);
    EXPECT_EQ(stopping.getValue(), 1.0);
}

TEST(RotarySliders, MoveSeveralTimesFinerWithShiftCtrlOrCommandHeld) {
    for (const auto modifier : {juce::ModifierKeys::shiftModifier, juce::ModifierKeys::ctrlModifier,
                                juce::ModifierKeys::commandModifier}) {
        orvane::RotarySliderGain plain("Plain");
        orvane::RotarySliderGain fine("Fine");
        plain.setSize(72, 72);
        fine.setSize(72, 72);
        test::drag(plain, {0, -1}, 40);
        test::drag(fine, {0, -1}, 40, juce::ModifierKeys(modifier));
        EXPECT_NEAR(plain.getValue(), 40 * 120.0 / 250, 1e-6);
        EXPECT_GT(fine.getValue(), 0.0);
        EXPECT_LT(fine.getValue(), plain.getValue() / 5);
    }
}

TEST(RotarySliders, FollowTheWheelUpwardsAndDownwards) {
    orvane::RotarySliderGain slider("Gain");
    slider.setSize(72, 72);
    slider.setRange(-96, 24, 0.1);
    juce::MouseWheelDetails wheel{0, 0.01f, false, false, false};
    slider.mouseWheelMove(test::mouse(slider, {36, 36}), wheel);
    const double up = slider.getValue();
    EXPECT_GT(up, 0.0);
    wheel.deltaY = -0.01f;
    slider.mouseWheelMove(test::mouse(slider, {36, 36}), wheel);
    EXPECT_LT(slider.getValue(), up);
}

TEST(RotarySliderSmallGain, PutsDecibelsIntoWordsAndReadsThemBack) {
    const orvane::RotarySliderSmallGain slider("Gain");
    const orvane::IStringValueConverter& converter = slider;
    EXPECT_EQ(converter.valueToString(-3.46), "-3.5 dB");
    EXPECT_EQ(converter.stringToValue("-3.5 dB"), -3.5);
    EXPECT_EQ(converter.stringToValue("loud"), 0.0);
}

} // namespace
