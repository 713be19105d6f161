// SPDX-License-Identifier: GPL-3.0-or-later
#include "Resources.h"
#include "ui/widgets/ArrowButtons.h"
#include "ui/widgets/OffScreen.h"

#include <gmock/gmock.h>

namespace {

template <typename Button>
void expectHighlightOnlyWhilePressed(const char* data, int size) {
    Button button("STEP");
    button.setBounds(0, 0, 24, 24);
    const juce::Image nothing(juce::Image::ARGB, 24, 24, true);
    EXPECT_TRUE(test::samePixels(test::shot(button), nothing));
    button.setState(juce::Button::buttonOver);
    EXPECT_TRUE(test::samePixels(test::shot(button), nothing));

    juce::Image expected(juce::Image::ARGB, 24, 24, true);
    juce::Graphics g(expected);
    g.drawImage(test::decoded(data, size), {0, 0, 24, 24});
    button.setState(juce::Button::buttonDown);
    EXPECT_TRUE(test::samePixels(test::shot(button), expected));
    EXPECT_GT(test::visiblePixels(expected), 0);
}

TEST(ArrowButtons, DrawNothingButAHighlightWhileTheyArePressed) {
    expectHighlightOnlyWhilePressed<orvane::ArrowButtonLeft>(resources::arrow_left_png,
                                                             resources::arrow_left_pngSize);
    expectHighlightOnlyWhilePressed<orvane::ArrowButtonRight>(resources::arrow_right_png,
                                                              resources::arrow_right_pngSize);
}

TEST(ArrowButtons, HavePicturesTwiceAsLargeAsTheyAreShown) {
    EXPECT_EQ(test::decoded(resources::arrow_left_png, resources::arrow_left_pngSize).getBounds(),
              juce::Rectangle<int>(48, 48));
    EXPECT_EQ(test::decoded(resources::arrow_right_png, resources::arrow_right_pngSize).getBounds(),
              juce::Rectangle<int>(48, 48));
}

TEST(ArrowButtons, TakeNoKeyboardFocus) {
    EXPECT_FALSE(orvane::ArrowButtonLeft("LEFT").getWantsKeyboardFocus());
    EXPECT_EQ(orvane::ArrowButtonRight("RIGHT").getName(), "RIGHT");
}

} // namespace
