// SPDX-License-Identifier: GPL-3.0-or-later
#include "Resources.h"
#include "ui/widgets/LinearSliders.h"
#include "ui/widgets/OffScreen.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <memory>

namespace {

struct Straight {
    const char* name;
    std::function<std::unique_ptr<juce::Slider>()> make;
    bool horizontal;
    bool centred;
    const char* track;
    int trackSize;
    const char* thumb;
    int thumbSize;
    juce::Rectangle<int> trackPixels;
    juce::Rectangle<int> thumbPixels;
};

template <typename Kind>
std::function<std::unique_ptr<juce::Slider>()> make() {
    return [] { return std::make_unique<Kind>("A slider"); };
}

#define PICTURE(name) resources::name##_png, resources::name##_pngSize

const Straight kinds[]{
    {"HorizontalSlider",
     make<orvane::HorizontalSlider>(),
     true,
     false,
     PICTURE(slider_track),
     PICTURE(slider_thumb),
     {216, 36},
     {48, 48}},
    {"HorizontalSliderCentered",
     make<orvane::HorizontalSliderCentered>(),
     true,
     true,
     PICTURE(slider_centered_track),
     PICTURE(slider_centered_thumb),
     {204, 36},
     {36, 36}},
    {"HorizontalSliderMiddleCentered",
     make<orvane::HorizontalSliderMiddleCentered>(),
     true,
     true,
     PICTURE(slider_middle_track),
     PICTURE(slider_thumb),
     {312, 48},
     {48, 48}},
    {"HorizontalSliderLong",
     make<orvane::HorizontalSliderLong>(),
     true,
     false,
     PICTURE(slider_long_track),
     PICTURE(slider_thumb),
     {516, 36},
     {48, 48}},
    {"HorizontalSliderLongCentered",
     make<orvane::HorizontalSliderLongCentered>(),
     true,
     true,
     PICTURE(slider_long_centered_track),
     PICTURE(slider_centered_thumb),
     {516, 36},
     {36, 36}},
    {"VerticalSliderLongCentered",
     make<orvane::VerticalSliderLongCentered>(),
     false,
     true,
     PICTURE(slider_vertical_track),
     PICTURE(slider_centered_thumb),
     {36, 516},
     {36, 36}},
    {"VerticalSliderLongCenteredBig",
     make<orvane::VerticalSliderLongCenteredBig>(),
     false,
     true,
     PICTURE(slider_vertical_micro_track),
     PICTURE(slider_vertical_micro_thumb),
     {36, 448},
     {60, 60}},
};

void PrintTo(const Straight& kind, std::ostream* stream) { *stream << kind.name; }

/// Whether line i of the track shows, as the rule is stated; a line at the very end of the span is outside.
bool shows(int i, int length, float pos, bool centred) {
    const int shownLength = length / 2;
    const float fraction = pos / static_cast<float>(shownLength);
    const float f = static_cast<float>(i) / static_cast<float>(length);
    const float anchor = centred ? 0.5f : 0.0f;
    return anchor < fraction ? anchor <= f && f < fraction : fraction <= f && f < anchor;
}

juce::Image shownTrack(const Straight& kind, float pos) {
    auto track = test::decoded(kind.track, kind.trackSize);
    for (int x = 0; x < track.getWidth(); ++x)
        for (int y = 0; y < track.getHeight(); ++y)
            if (!shows(kind.horizontal ? x : y, kind.horizontal ? track.getWidth() : track.getHeight(), pos,
                       kind.centred))
                track.multiplyAlphaAt(x, y, 0.0f);
    return track;
}

/// What a slider has to look like at a proportion of its travel, drawn line by line.
juce::Image expected(const Straight& kind, juce::Rectangle<int> bounds, double proportion, bool enabled) {
    juce::Image image(juce::Image::ARGB, bounds.getWidth(), bounds.getHeight(), true);
    juce::Graphics g(image);
    const auto thumb = test::decoded(kind.thumb, kind.thumbSize);
    const int inset = thumb.getWidth() / 4 / 2;
    const int length = (kind.horizontal ? bounds.getWidth() : bounds.getHeight()) - 2 * inset;
    const auto pos = static_cast<float>(inset + (kind.horizontal ? proportion : 1.0 - proportion) * length);
    if (enabled) {
        const auto track = shownTrack(kind, pos);
        g.drawImage(track, {0, 0, static_cast<float>(track.getWidth()) / 2,
                            static_cast<float>(track.getHeight()) / 2});
    }
    const float half = static_cast<float>(std::min(thumb.getWidth(), thumb.getHeight())) * 0.25f;
    const auto across = static_cast<float>(juce::roundToInt(static_cast<double>(
        static_cast<float>(kind.horizontal ? bounds.getHeight() : bounds.getWidth()) * 0.5f - half)));
    g.drawImage(thumb, {kind.horizontal ? pos - half : across, kind.horizontal ? across : pos - half,
                        2 * half, 2 * half});
    return image;
}

/// Expected values: the family's table, and the rule for a line of the track worked out here.
class LinearFamily : public ::testing::TestWithParam<Straight> {
protected:
    std::unique_ptr<juce::Slider> slider = GetParam().make();
    juce::Rectangle<int> bounds{GetParam().trackPixels.getWidth() / 2,
                                GetParam().trackPixels.getHeight() / 2};

    void SetUp() override {
        slider->setRange(-100, 100, 0);
        slider->setBounds(bounds);
    }
};

TEST_P(LinearFamily, HasThePicturesOfItsKind) {
    EXPECT_EQ(test::decoded(GetParam().track, GetParam().trackSize).getBounds(), GetParam().trackPixels);
    EXPECT_EQ(test::decoded(GetParam().thumb, GetParam().thumbSize).getBounds(), GetParam().thumbPixels);
}

TEST_P(LinearFamily, FixesItsStyleWhenItIsMade) {
    EXPECT_EQ(slider->getSliderStyle(),
              GetParam().horizontal ? juce::Slider::LinearHorizontal : juce::Slider::LinearVertical);
    EXPECT_EQ(slider->getTextBoxPosition(), juce::Slider::NoTextBox);
    EXPECT_EQ(slider->getName(), "A slider");
    EXPECT_FALSE(slider->getWantsKeyboardFocus());
}

TEST_P(LinearFamily, SharesOneLookAmongAllOfItsKindAlone) {
    const auto& look = slider->getLookAndFeel();
    for (const Straight& kind : kinds)
        EXPECT_EQ(&kind.make()->getLookAndFeel() == &look, kind.name == GetParam().name) << kind.name;
}

TEST_P(LinearFamily, ShowsTheTrackFromItsAnchorToTheValueAndTheThumbOnTop) {
    for (const double proportion : {0.0, 0.1, 0.3, 0.5, 0.77, 1.0}) {
        slider->setValue(-100 + 200 * proportion);
        EXPECT_TRUE(test::samePixels(test::shot(*slider), expected(GetParam(), bounds, proportion, true)))
            << proportion;
    }
}

TEST_P(LinearFamily, ShowsTheThumbAloneWhileDisabled) {
    slider->setValue(60);
    slider->setEnabled(false);
    EXPECT_TRUE(test::samePixels(test::shot(*slider), expected(GetParam(), bounds, 0.8, false)));
}

TEST_P(LinearFamily, ShowsNoTrackAtItsAnchor) {
    const int length = GetParam().horizontal ? bounds.getWidth() : bounds.getHeight();
    const float anchor = GetParam().centred ? 0.5f * static_cast<float>(length) : 0.0f;
    EXPECT_EQ(test::visiblePixels(shownTrack(GetParam(), anchor)), 0);
    if (!GetParam().centred)
        return; // the travel begins after the track's beginning, so that a little always shows
    slider->setValue(0);
    EXPECT_TRUE(test::samePixels(test::shot(*slider), expected(GetParam(), bounds, 0.5, false)));
}

TEST_P(LinearFamily, TravelsFromAnEighthOfTheThumbPictureInsideToAsMuchBeforeTheEnd) {
    const int inset = GetParam().thumbPixels.getWidth() / 4 / 2;
    const int length = GetParam().horizontal ? bounds.getWidth() : bounds.getHeight();
    const auto first = static_cast<float>(GetParam().horizontal ? inset : length - inset);
    const auto last = static_cast<float>(GetParam().horizontal ? length - inset : inset);
    EXPECT_EQ(slider->getPositionOfValue(-100), first);
    EXPECT_EQ(slider->getPositionOfValue(100), last);
}

INSTANTIATE_TEST_SUITE_P(AllSevenKinds, LinearFamily, ::testing::ValuesIn(kinds),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(LinearSliders, GoBackToTheResetValueThatTheirOwnerSetsAtADoubleClickAndAtAnAltClick) {
    orvane::HorizontalSliderMiddleCentered slider("Reset");
    slider.setBounds(0, 0, 156, 24);
    slider.setRange(0, 100, 1);
    slider.setDoubleClickReturnValue(true, 50, juce::ModifierKeys::altModifier);
    slider.setValue(80);
    slider.mouseDoubleClick(test::mouse(slider, {10, 10}));
    EXPECT_EQ(slider.getValue(), 50);
    slider.setValue(80);
    slider.mouseDown(test::mouse(
        slider, {10, 10},
        juce::ModifierKeys(juce::ModifierKeys::altModifier | juce::ModifierKeys::leftButtonModifier)));
    EXPECT_EQ(slider.getValue(), 50);
}

TEST(LinearSliders, GoWhereAClickPutsThem) {
    orvane::HorizontalSliderMiddleCentered slider("Click");
    slider.setBounds(0, 0, 156, 24);
    slider.setRange(0, 100, 1);
    slider.mouseDown(test::mouse(slider, {6.0f + 0.25f * 144.0f, 12.0f},
                                 juce::ModifierKeys(juce::ModifierKeys::leftButtonModifier)));
    EXPECT_EQ(slider.getValue(), 25);
}

} // namespace
