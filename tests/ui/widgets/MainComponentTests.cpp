// SPDX-License-Identifier: GPL-3.0-or-later
#include "Resources.h"
#include "ui/MainComponent.h"
#include "ui/widgets/OffScreen.h"

#include <gmock/gmock.h>

namespace {

class Window : public ::testing::Test {
protected:
    Window() {
        window.setBounds(0, 0, 1080, 636);
        window.setVisible(true);
    }
    orvane::kestrum::MainComponent window;
};

/// Expected values: the table of the window's widgets.
TEST_F(Window, PutsEveryWidgetInItsPlaceUnderItsName) {
    const auto expectAt = [](const juce::Component& widget, const char* name, juce::Rectangle<int> bounds) {
        EXPECT_EQ(widget.getName(), name);
        EXPECT_EQ(widget.getBounds(), bounds) << name;
        EXPECT_TRUE(widget.isVisible()) << name;
    };
    expectAt(window.speakerSetup, "SPEAKER SETUP", {12, 571, 107, 24});
    expectAt(window.scene, "SCENE", {282, 571, 107, 24});
    expectAt(window.ambience, "AMBIENCE", {460, 569, 156, 24});
    expectAt(window.ambienceTextBox, "AMBIENCE", {577, 549, 36, 18});
    expectAt(window.focus, "FOCUS", {640, 569, 156, 24});
    expectAt(window.focusTextBox, "FOCUS", {757, 549, 36, 18});
    expectAt(window.headRotation, "HEAD ROTATION", {864, 558, 72, 72});
    expectAt(window.headRotationTextBox, "HEAD ROTATION", {822, 573, 36, 18});
    expectAt(window.masterGain, "MASTER", {990, 558, 72, 72});
    expectAt(window.masterGainTextBox, "MASTER", {952, 573, 36, 18});
    expectAt(window.sceneNext, "SCENE NEXT", {415, 570, 24, 24});
    expectAt(window.scenePrevious, "SCENE PREVIOUS", {391, 570, 24, 24});
    expectAt(window.logoButton, "", {892, 10, 180, 70});
}

TEST_F(Window, AddsItsChildrenInOrderWithTheWarningOnTop) {
    const std::vector<juce::Component*> expected{&window.speakerSetup,  &window.scene,
                                                 &window.scenePrevious, &window.sceneNext,
                                                 &window.ambience,      &window.ambienceTextBox,
                                                 &window.focus,         &window.focusTextBox,
                                                 &window.headRotation,  &window.headRotationTextBox,
                                                 &window.masterGain,    &window.masterGainTextBox,
                                                 &window.logoButton,    &window.warningOverlay,
                                                 &window.tooltipWindow};
    std::vector<juce::Component*> actual(window.getChildren().begin(), window.getChildren().end());
    EXPECT_EQ(actual, expected); // the framework keeps a tooltip above everything
}

TEST_F(Window, NamesTheArrowButtonsForTheEditorToFind) {
    EXPECT_EQ(window.findChildWithID("SceneButtonPrevious"), &window.scenePrevious);
    EXPECT_EQ(window.findChildWithID("SceneButtonNext"), &window.sceneNext);
}

TEST_F(Window, GivesTheSlidersTheirRangesStepsAndValues) {
    EXPECT_EQ(window.ambience.getRange(), juce::Range<double>(0, 100));
    EXPECT_EQ(window.ambience.getInterval(), 1.0);
    EXPECT_EQ(window.ambience.getValue(), 50.0);
    EXPECT_EQ(window.focus.getRange(), juce::Range<double>(-100, 100));
    EXPECT_EQ(window.focus.getInterval(), 0.1);
    EXPECT_EQ(window.focus.getValue(), 0.0);
    EXPECT_EQ(window.headRotation.getRange(), juce::Range<double>(-180, 180));
    EXPECT_EQ(window.headRotation.getInterval(), 1.0);
    EXPECT_EQ(window.headRotation.getValue(), 0.0);
    EXPECT_EQ(window.masterGain.getRange(), juce::Range<double>(-96, 24));
    EXPECT_EQ(window.masterGain.getInterval(), 0.1);
    EXPECT_EQ(window.masterGain.getValue(), 0.0);
}

TEST_F(Window, TurnsTheHeadAFullCircleFromBehindAndStopsTheOthersAtTheirEnds) {
    const auto head = window.headRotation.getRotaryParameters();
    EXPECT_EQ(head.startAngleRadians, 3.1415927f);
    EXPECT_EQ(head.endAngleRadians, 9.424778f);
    EXPECT_FALSE(head.stopAtEnd);
    EXPECT_TRUE(window.focus.getRotaryParameters().stopAtEnd);
    EXPECT_TRUE(window.masterGain.getRotaryParameters().stopAtEnd);
}

TEST_F(Window, GoesBackToTheResetValuesAtADoubleClickAndAtAnAltClick) {
    const std::pair<juce::Slider*, double> resets[]{{&window.ambience, 50.0},
                                                    {&window.focus, 0.0},
                                                    {&window.headRotation, 0.0},
                                                    {&window.masterGain, 0.0}};
    const juce::ModifierKeys altClick(juce::ModifierKeys::altModifier |
                                      juce::ModifierKeys::leftButtonModifier);
    for (const auto& [slider, reset] : resets) {
        slider->setValue(17.0);
        slider->mouseDoubleClick(test::mouse(*slider, {3, 3}));
        EXPECT_EQ(slider->getValue(), reset) << slider->getName();
        slider->setValue(17.0);
        slider->mouseDown(test::mouse(*slider, {3, 3}, altClick));
        EXPECT_EQ(slider->getValue(), reset) << slider->getName();
    }
}

TEST_F(Window, RunsTheHeadOnFromBehindOnOneSideToBehindOnTheOther) {
    window.headRotation.setValue(170);
    test::drag(window.headRotation, {1, 0}, 14); // 20 of 360 degrees, 250 pixels for all
    EXPECT_EQ(window.headRotation.getValue(), -170);
}

TEST_F(Window, WritesMasterWithOneDecimalAndTheOthersWithNone) {
    const auto text = [](juce::Component& box) { return test::child<juce::Label>(box).getText(); };
    EXPECT_EQ(text(window.ambienceTextBox), "50");
    EXPECT_EQ(text(window.focusTextBox), "0");
    EXPECT_EQ(text(window.headRotationTextBox), "0");
    EXPECT_EQ(text(window.masterGainTextBox), "0.0");
    window.focus.setValue(12.3, juce::sendNotificationSync);
    window.masterGain.setValue(-12.3, juce::sendNotificationSync);
    EXPECT_EQ(text(window.focusTextBox), "12");
    EXPECT_EQ(text(window.masterGainTextBox), "-12.3");
}

TEST_F(Window, TakesEverySliderValueByTyping) {
    const auto type = [](juce::Component& box, const char* typed) {
        test::type(test::child<juce::Label>(box), typed);
    };
    type(window.ambienceTextBox, "33");
    type(window.focusTextBox, "-44");
    type(window.headRotationTextBox, "135");
    type(window.masterGainTextBox, "-6.5");
    EXPECT_EQ(window.ambience.getValue(), 33.0);
    EXPECT_EQ(window.focus.getValue(), -44.0);
    EXPECT_EQ(window.headRotation.getValue(), 135.0);
    EXPECT_EQ(window.masterGain.getValue(), -6.5);
}

TEST_F(Window, KeepsABareLogoButtonThatTellsTheVersion) {
    EXPECT_EQ(window.logoButton.getTooltip(), "v1.7.0 b15");
    EXPECT_TRUE(window.logoButton.getNormalImage().isNull());
    EXPECT_EQ(test::visiblePixels(test::shot(window.logoButton)), 0);
    EXPECT_EQ(window.getComponentAt(900, 20), &window.logoButton);
}

TEST_F(Window, ShowsTheWarningOverAllOfItWhileThereIsAnErrorAndLetsItTakeTheClicks) {
    EXPECT_FALSE(window.warningOverlay.isVisible());
    EXPECT_EQ(window.warningOverlay.getBounds(), window.getLocalBounds());
    window.errorStateChanged(true);
    EXPECT_TRUE(window.warningOverlay.isVisible());
    EXPECT_EQ(window.getComponentAt(500, 580), &window.warningOverlay);
    window.errorStateChanged(false);
    EXPECT_FALSE(window.warningOverlay.isVisible());
    EXPECT_EQ(window.getComponentAt(500, 580), &window.ambience);
}

/// Expected values: drawing both pictures anew, scaled and blended by the framework.
TEST_F(Window, PaintsTheSamePixelsAtEveryScaleWhetherItKeepsThemOrNot) {
    using orvane::kestrum::WindowPicture;
    const auto background = test::decoded(resources::normal_png, resources::normal_pngSize);
    const auto other = test::decoded(resources::blurred_png, resources::blurred_pngSize);
    const auto diagram = test::decoded(resources::_5_1_ITU_png, resources::_5_1_ITU_pngSize);
    WindowPicture kept;
    const auto paint = [&](float scale, const juce::Image& behind, const auto& draw) {
        juce::Image image(juce::Image::RGB, juce::roundToInt(1080 * scale), juce::roundToInt(636 * scale),
                          true);
        juce::Graphics g(image);
        g.addTransform(juce::AffineTransform::scale(scale));
        draw(g, behind);
        return image;
    };
    for (const float scale : {1.0f, 1.25f, 1.5f, 2.0f})
        for (const auto& behind : {background, other, background}) {
            const auto expected = paint(scale, behind, [&](juce::Graphics& g, const juce::Image& image) {
                WindowPicture::drawAnew(g, image, diagram);
            });
            for (int time = 0; time < 2; ++time)
                EXPECT_TRUE(test::samePixels(
                    paint(scale, behind,
                          [&](juce::Graphics& g, const juce::Image& image) { kept.draw(g, image, diagram); }),
                    expected))
                    << scale;
        }
}

TEST_F(Window, LaysTheDiagramOverTheBackground) {
    window.backgroundImage = juce::Image(juce::Image::ARGB, 2160, 1272, true);
    window.backgroundImage.clear(window.backgroundImage.getBounds(), juce::Colours::red);
    window.speakerImage = juce::Image(juce::Image::ARGB, 2160, 1008, true);
    window.speakerImage.clear({0, 0, 1080, 1008}, juce::Colours::blue);
    const auto picture = test::shot(window);
    EXPECT_EQ(picture.getPixelAt(270, 250), juce::Colours::blue);
    EXPECT_EQ(picture.getPixelAt(800, 250), juce::Colours::red);
    EXPECT_EQ(picture.getPixelAt(270, 503), juce::Colours::blue);
    EXPECT_EQ(picture.getPixelAt(270, 504), juce::Colours::red);
}

/// Hears of every area that has to be painted anew.
class Repaints final : public juce::CachedComponentImage {
public:
    explicit Repaints(juce::RectangleList<int>& areas) : areas(areas) {}
    void paint(juce::Graphics&) override {}
    bool invalidateAll() override { return false; }
    bool invalidate(const juce::Rectangle<int>& area) override {
        areas.add(area);
        return false;
    }
    void releaseResources() override {}

private:
    juce::RectangleList<int>& areas;
};

TEST_F(Window, RepaintsOnlyADraggedDialAndItsNumber) {
    juce::RectangleList<int> areas;
    window.setCachedComponentImage(new Repaints(areas)); // taken over
    test::drag(window.masterGain, {0, -3}, 5);
    EXPECT_EQ(areas.getBounds(),
              window.masterGain.getBounds().getUnion(window.masterGainTextBox.getBounds()));
    areas.clear();
    window.masterGain.setValue(window.masterGain.getValue(), juce::sendNotificationSync);
    EXPECT_TRUE(areas.isEmpty()); // nothing changed
    window.setCachedComponentImage(nullptr);
}

TEST_F(Window, PaintsNothingWithoutPictures) {
    juce::Image image(juce::Image::ARGB, 10, 10, true);
    juce::Graphics g(image);
    window.paint(g);
    EXPECT_EQ(test::visiblePixels(image), 0);
}

TEST_F(Window, FollowsAPictureThatIsReplaced) {
    window.backgroundImage = juce::Image(juce::Image::ARGB, 2160, 1272, true);
    window.backgroundImage.clear(window.backgroundImage.getBounds(), juce::Colours::red);
    EXPECT_EQ(test::shot(window).getPixelAt(5, 5), juce::Colours::red);
    window.backgroundImage = juce::Image(juce::Image::ARGB, 2160, 1272, true);
    window.backgroundImage.clear(window.backgroundImage.getBounds(), juce::Colours::green);
    EXPECT_EQ(test::shot(window).getPixelAt(5, 5), juce::Colours::green);
}

} // namespace
