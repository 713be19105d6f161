// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/Fonts.h"
#include "ui/widgets/LinearSliders.h"
#include "ui/widgets/OffScreen.h"
#include "ui/widgets/SliderBoxTextBox.h"

#include <gmock/gmock.h>

#include <memory>

namespace {

class TextBox : public ::testing::Test {
protected:
    TextBox() {
        slider.setRange(-96, 24, 0.1);
        box = std::make_unique<orvane::SliderBoxTextBox>(slider, 1, orvane::SliderBoxTextBox::Formatter(),
                                                         orvane::fonts::heeboRegular(), 15.0f);
        box->setBounds(0, 0, 36, 18);
    }
    juce::Label& label() { return test::child<juce::Label>(*box); }
    juce::String text() { return label().getText(); }
    void type(const juce::String& typed) { test::type(label(), typed); }

    orvane::HorizontalSliderMiddleCentered slider{"LEVEL"};
    std::unique_ptr<orvane::SliderBoxTextBox> box;
};

struct Counter final : juce::Slider::Listener {
    void sliderValueChanged(juce::Slider*) override { ++changes; }
    int changes = 0;
};

TEST_F(TextBox, HoldsALabelNamedAfterItsSliderThatFillsIt) {
    EXPECT_EQ(label().getName(), "LEVELTextBox");
    EXPECT_EQ(label().getBounds(), juce::Rectangle<int>(0, 0, 36, 18));
    EXPECT_EQ(label().getJustificationType(), juce::Justification::centred);
    EXPECT_TRUE(label().isEditableOnSingleClick());
    EXPECT_TRUE(label().isEditableOnDoubleClick());
    EXPECT_FALSE(label().doesLossOfFocusDiscardChanges());
    EXPECT_EQ(label().getFont().getHeight(), 15.0f);
    EXPECT_EQ(label().getFont().getTypefaceName(), "Heebo");
}

TEST_F(TextBox, HasTheColoursOfTheEditor) {
    const juce::Colour teal(0xff50e8d8);
    EXPECT_TRUE(label().findColour(juce::Label::backgroundColourId).isTransparent());
    EXPECT_TRUE(label().findColour(juce::Label::outlineColourId).isTransparent());
    EXPECT_EQ(label().findColour(juce::Label::textColourId), teal);
    EXPECT_TRUE(label().findColour(juce::TextEditor::backgroundColourId).isTransparent());
    EXPECT_EQ(label().findColour(juce::TextEditor::textColourId), teal);
    EXPECT_EQ(label().findColour(juce::TextEditor::highlightColourId), teal);
}

TEST_F(TextBox, ShowsTheValueWithItsDecimalsFromTheBeginningAndAfterEveryChange) {
    EXPECT_EQ(text(), "0.0");
    slider.setValue(-3.46, juce::sendNotificationSync); // the slider steps by 0.1
    EXPECT_EQ(text(), "-3.5");
}

TEST_F(TextBox, ShowsTheNearestIntegerWithoutDecimals) {
    slider.setRange(-100, 100, 0.1);
    const orvane::SliderBoxTextBox whole(slider, 0, {}, orvane::fonts::heeboRegular(), 15.0f);
    auto& wholeLabel = test::child<juce::Label>(const_cast<orvane::SliderBoxTextBox&>(whole));
    slider.setValue(12.6, juce::sendNotificationSync);
    EXPECT_EQ(wholeLabel.getText(), "13");
    slider.setValue(-12.6, juce::sendNotificationSync);
    EXPECT_EQ(wholeLabel.getText(), "-13");
    slider.setValue(-0.4, juce::sendNotificationSync);
    EXPECT_EQ(wholeLabel.getText(), "0");
}

TEST_F(TextBox, UsesTheFormatterThatItIsGivenAndAppendsTheSuffix) {
    orvane::SliderBoxTextBox named(
        slider, 3,
        [](double value, int decimals) { return juce::String(value, 1) + "/" + juce::String(decimals); },
        orvane::fonts::heeboRegular(), 15.0f);
    EXPECT_EQ(test::child<juce::Label>(named).getText(), "0.0/3");
    named.setSuffix(" dB");
    EXPECT_EQ(test::child<juce::Label>(named).getText(), "0.0/3 dB");
    slider.setValue(6, juce::sendNotificationSync);
    EXPECT_EQ(test::child<juce::Label>(named).getText(), "6.0/3 dB");
}

TEST_F(TextBox, SetsTheSliderToATypedValueAndTellsItsListenersOnce) {
    Counter counter;
    slider.addListener(&counter);
    type("-12.5");
    EXPECT_EQ(slider.getValue(), -12.5);
    EXPECT_EQ(text(), "-12.5");
    EXPECT_EQ(counter.changes, 1);
    slider.removeListener(&counter);
}

TEST_F(TextBox, EndsAtTheRangesLimitForATextOutOfIt) {
    type("1000");
    EXPECT_EQ(slider.getValue(), 24.0);
    EXPECT_EQ(text(), "24.0");
    type("-1000");
    EXPECT_EQ(slider.getValue(), -96.0);
    EXPECT_EQ(text(), "-96.0");
}

TEST_F(TextBox, SnapsBackWhenTheSliderStandsAtTheLimitAlready) {
    slider.setValue(24, juce::sendNotificationSync);
    Counter counter;
    slider.addListener(&counter);
    type("99");
    EXPECT_EQ(text(), "24.0");
    EXPECT_EQ(counter.changes, 0);
    slider.removeListener(&counter);
}

TEST_F(TextBox, ShowsTheStepThatATextBetweenTwoStepsEndsOn) {
    type("0.04");
    EXPECT_EQ(slider.getValue(), 0.0);
    EXPECT_EQ(text(), "0.0");
}

TEST_F(TextBox, LetsNoLettersInWhileItsEditorIsOpen) {
    type("1a2b.c5 dB");
    EXPECT_EQ(slider.getValue(), 12.5);
}

struct Typed {
    const char* text;
    double value;
};

TEST_F(TextBox, ReadsASecondMinusOrPointAsFarAsTheFrameworksConversionGoes) {
    for (const auto& [typed, value] :
         {Typed{"1.2.3", 1.2}, Typed{"5-3", 5.0}, Typed{"-", 0.0}, Typed{"", 0.0}}) {
        slider.setValue(20, juce::sendNotificationSync);
        type(juce::String(typed).isEmpty() ? juce::String(".") : juce::String(typed));
        EXPECT_NEAR(slider.getValue(), value, 1e-9) << typed;
    }
}

TEST_F(TextBox, TakesWordsThatMeanNoNumberForNoChange) {
    slider.setValue(3, juce::sendNotificationSync);
    label().setText("nan", juce::sendNotificationSync); // cannot be typed; a formatter may say it
    EXPECT_EQ(slider.getValue(), 3.0);
    EXPECT_EQ(text(), "3.0");
}

TEST_F(TextBox, LeavesTheSliderAloneWhenTypingIsGivenUp) {
    slider.setValue(3, juce::sendNotificationSync);
    label().showEditor();
    label().getCurrentTextEditor()->insertTextAtCaret("7");
    label().hideEditor(true);
    EXPECT_EQ(slider.getValue(), 3.0);
    EXPECT_EQ(text(), "3.0");
}

TEST_F(TextBox, FollowsTheEnablementOfItsSlider) {
    EXPECT_TRUE(label().isEnabled());
    slider.setEnabled(false);
    EXPECT_FALSE(label().isEnabled());
    slider.setEnabled(true);
    EXPECT_TRUE(label().isEnabled());
    slider.setEnabled(false);
    orvane::SliderBoxTextBox late(slider, 0, {}, orvane::fonts::heeboRegular(), 15.0f);
    EXPECT_FALSE(test::child<juce::Label>(late).isEnabled());
}

TEST_F(TextBox, OutlivesItsSlider) {
    auto shortLived = std::make_unique<orvane::HorizontalSlider>("SHORT");
    orvane::SliderBoxTextBox survivor(*shortLived, 0, {}, orvane::fonts::heeboRegular(), 15.0f);
    shortLived.reset();
    survivor.setSuffix("!");
    auto& survivingLabel = test::child<juce::Label>(survivor);
    EXPECT_EQ(survivingLabel.getText(), "0") << "the last value, which nobody can ask for again";
    test::type(survivingLabel, "5");
    EXPECT_EQ(survivingLabel.getText(), "5") << "no range is left to bring it into";
}

TEST_F(TextBox, KeepsTheNumberInItsPlaceWhileItIsEdited) {
    slider.setValue(-12.5, juce::sendNotificationSync);
    label().showEditor();
    const auto* const editor = label().getCurrentTextEditor();
    EXPECT_EQ(editor->getBounds(), label().getLocalBounds());
    EXPECT_LE(editor->getTextHeight(), editor->getHeight());
}

} // namespace
