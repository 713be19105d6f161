// SPDX-License-Identifier: GPL-3.0-or-later
#include "Resources.h"
#include "ui/widgets/ComboBoxes.h"
#include "ui/widgets/Fonts.h"
#include "ui/widgets/OffScreen.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace {

class ComboBoxes : public ::testing::Test {
protected:
    ComboBoxes() {
        for (juce::ComboBox* const box :
             {static_cast<juce::ComboBox*>(&low), static_cast<juce::ComboBox*>(&high)}) {
            owner.addAndMakeVisible(box);
            box->addItem("Mix Room", 7);
            box->addItem("Kitchen", 9);
        }
        low.setBounds(0, 0, 107, 24);
        high.setBounds(0, 30, 160, 36);
    }
    static juce::Label& label(juce::Component& box) { return test::child<juce::Label>(box); }

    juce::Component owner;
    orvane::ComboBox24px low{owner, "LOW", orvane::fonts::heeboRegular(), 15.0f};
    orvane::ComboBox36px high{owner, "HIGH"};
};

TEST_F(ComboBoxes, HaveTheColoursOfTheFamily) {
    const juce::Colour teal(81, 232, 216);
    const auto& look = low.getLookAndFeel();
    EXPECT_EQ(look.findColour(juce::PopupMenu::backgroundColourId), juce::Colour(0, 87, 91));
    EXPECT_EQ(look.findColour(juce::PopupMenu::highlightedBackgroundColourId), juce::Colour(0xbfa4c2ce));
    EXPECT_EQ(look.findColour(juce::PopupMenu::highlightedTextColourId), teal);
    EXPECT_EQ(look.findColour(juce::PopupMenu::textColourId), teal);
    EXPECT_EQ(look.findColour(juce::ComboBox::textColourId), teal);
    EXPECT_EQ(look.findColour(juce::PopupMenu::headerTextColourId), juce::Colours::white);
    EXPECT_EQ(label(low).findColour(juce::Label::textColourId), teal);
}

TEST_F(ComboBoxes, HaveALookOfTheirOwnEach) { EXPECT_NE(&low.getLookAndFeel(), &high.getLookAndFeel()); }

TEST_F(ComboBoxes, WriteInTheFontOfTheirHeight) {
    const auto lowFont = label(low).getFont();
    EXPECT_EQ(lowFont.getTypefaceName(), "Heebo");
    EXPECT_EQ(lowFont.getHeight(), 15.0f);
    EXPECT_EQ(lowFont.getHorizontalScale(), 1.0f);
    EXPECT_EQ(lowFont.getExtraKerningFactor(), 0.05f);
    EXPECT_FALSE(lowFont.isBold());
    const auto highFont = label(high).getFont();
    EXPECT_EQ(highFont.getHeight(), 14.0f);
    EXPECT_EQ(highFont.getHorizontalScale(), 1.0f);
    EXPECT_EQ(highFont.getExtraKerningFactor(), 0.075f);
    EXPECT_FALSE(highFont.isBold());
}

TEST_F(ComboBoxes, PutTheTextBesideTheArrow) {
    EXPECT_EQ(label(low).getBounds(), juce::Rectangle<int>(12, 0, 107, 24));
    EXPECT_EQ(label(high).getBounds(), juce::Rectangle<int>(18, 0, 160, 36));
    EXPECT_EQ(label(low).getJustificationType(), juce::Justification::centredLeft);
}

TEST_F(ComboBoxes, KeepTheTextOfTheLongestEntryInsideTheBox) {
    low.addItem("Analytic Position", 11);
    low.setSelectedId(11, juce::dontSendNotification);
    const auto picture = test::shot(low);
    EXPECT_EQ(test::visiblePixels(picture.getClippedImage({103, 0, 4, 24})), 0);
    EXPECT_GT(test::visiblePixels(picture.getClippedImage({85, 0, 18, 24})), 0);
}

TEST_F(ComboBoxes, DrawTheArrowAtTheLeftEdgeAndNothingElseBehindTheText) {
    juce::Image expected(juce::Image::ARGB, 107, 24, true);
    juce::Graphics g(expected);
    g.drawImage(test::decoded(resources::combo_arrow_24_png, resources::combo_arrow_24_pngSize),
                {0, 3, 12, 18});
    EXPECT_TRUE(test::samePixels(test::shot(low), expected));

    juce::Image higher(juce::Image::ARGB, 160, 36, true);
    juce::Graphics(higher).drawImage(
        test::decoded(resources::combo_arrow_36_png, resources::combo_arrow_36_pngSize), {0, 6, 18, 24});
    EXPECT_TRUE(test::samePixels(test::shot(high), higher));
}

TEST_F(ComboBoxes, AreDimmedWhileDisabled) {
    const auto strongest = [&] {
        int alpha = 0;
        const auto picture = test::shot(low);
        for (int y = 0; y < picture.getHeight(); ++y)
            for (int x = 0; x < picture.getWidth(); ++x)
                alpha = std::max(alpha, static_cast<int>(picture.getPixelAt(x, y).getAlpha()));
        return alpha;
    };
    const int enabled = strongest();
    low.setEnabled(false);
    EXPECT_GT(strongest(), 0);
    EXPECT_LT(strongest(), enabled / 2);
}

TEST_F(ComboBoxes, TakeNoKeyboardFocusWhereverTheyLie) {
    juce::Component other;
    other.addAndMakeVisible(low);
    EXPECT_FALSE(low.getWantsKeyboardFocus());
    EXPECT_FALSE(high.getWantsKeyboardFocus());
    EXPECT_EQ(low.getName(), "LOW");
    EXPECT_EQ(high.getName(), "HIGH");
}

TEST_F(ComboBoxes, StayWhereTheyAreUnderTheWheel) {
    low.setSelectedId(7, juce::dontSendNotification);
    low.mouseWheelMove(test::mouse(low, {50, 12}), {0, -1.0f, false, false, false});
    EXPECT_EQ(low.getSelectedId(), 7);
}

/// Expected values: the rule for the size of a menu's entry.
TEST_F(ComboBoxes, MakeMenuEntriesFourPixelsLowerThanTheStandardHeight) {
    auto& look = low.getLookAndFeel();
    const juce::Font font = look.getPopupMenuFont();
    int width = 0;
    int height = 0;
    const auto size = [&](bool separator, int standard) {
        look.getIdealPopupMenuItemSize("Mix Room", separator, standard, width, height);
    };
    size(false, 24);
    EXPECT_EQ(height, 20);
    EXPECT_EQ(width, font.getStringWidth("Mix Room") + 40); // 24 / 1.3 is higher than the font: not shrunk
    size(false, 13);
    EXPECT_EQ(height, 9);
    EXPECT_EQ(width, font.withHeight(10.0f).getStringWidth("Mix Room") + 18);
    size(false, 0);
    EXPECT_EQ(height, 20); // 15 * 1.3 = 19.5
    EXPECT_EQ(width, font.getStringWidth("Mix Room") + 40);
    size(true, 24);
    EXPECT_EQ(height, 12);
    EXPECT_EQ(width, 50);
    size(true, 0);
    EXPECT_EQ(height, 10);
    EXPECT_EQ(width, 50);
}

TEST_F(ComboBoxes, CountNoHeadingsAmongTheirEntries) {
    low.addSectionHeading("More");
    low.addItem("Stadium", 13);
    EXPECT_EQ(low.getNumItems(), 3);
    EXPECT_EQ(low.indexOfItemId(13), 2);
}

} // namespace
