// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/WarningOverlay.h"
#include "ui/widgets/OffScreen.h"

#include <gmock/gmock.h>

namespace {

/// A colour over a transparent ground loses a little in the last bit.
void expectDarkened(const juce::Image& image, int x, int y) {
    const auto pixel = image.getPixelAt(x, y);
    EXPECT_EQ(pixel.getAlpha(), 0xc2);
    EXPECT_NEAR(pixel.getRed(), 0x22, 1);
    EXPECT_NEAR(pixel.getGreen(), 0x22, 1);
    EXPECT_NEAR(pixel.getBlue(), 0x22, 1);
}

TEST(WarningOverlay, DarkensAllOfItself) {
    orvane::kestrum::WarningOverlay overlay;
    overlay.setBounds(0, 0, 1080, 636);
    const auto picture = test::shot(overlay);
    for (const int x : {0, 300, 1079})
        for (const int y : {0, 635})
            expectDarkened(picture, x, y);
}

TEST(WarningOverlay, WritesWhiteWordsInTheMiddleAndNowhereElse) {
    orvane::kestrum::WarningOverlay overlay;
    overlay.setBounds(0, 0, 1080, 636);
    const auto picture = test::shot(overlay);
    int white = 0;
    juce::Rectangle<int> inked;
    for (int y = 0; y < 636; ++y)
        for (int x = 0; x < 1080; ++x)
            if (picture.getPixelAt(x, y).getBrightness() > 0.5f) {
                ++white;
                inked = inked.isEmpty() ? juce::Rectangle<int>(x, y, 1, 1)
                                        : inked.getUnion(juce::Rectangle<int>(x, y, 1, 1));
            }
    EXPECT_GT(white, 1000);
    EXPECT_TRUE(juce::Rectangle<int>(315, 168, 450, 300).contains(inked)) << inked.toString();
    EXPECT_NEAR(inked.getCentreX(), 540, 8);
    EXPECT_NEAR(inked.getCentreY(), 318, 8);
    EXPECT_GT(inked.getHeight(), 8 * 14); // no line is left out for being the ninth
}

} // namespace
