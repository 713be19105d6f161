// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/MainComponent.h"

#include "ui/widgets/Fonts.h"

namespace orvane::kestrum {

namespace {

constexpr float fontHeight = 15.0f;
constexpr int tooltipDelayMilliseconds = 700;

} // namespace

MainComponent::MainComponent()
    : speakerSetup(*this, "SPEAKER SETUP", fonts::heeboRegular(), fontHeight),
      scene(*this, "SCENE", fonts::heeboRegular(), fontHeight),
      ambience("AMBIENCE"),
      ambienceTextBox(ambience, 0, {}, fonts::heeboRegular(), fontHeight),
      focus("FOCUS"),
      focusTextBox(focus, 0, {}, fonts::heeboRegular(), fontHeight),
      headRotation("HEAD ROTATION"),
      headRotationTextBox(headRotation, 0, {}, fonts::heeboRegular(), fontHeight),
      masterGain("MASTER"),
      masterGainTextBox(masterGain, 1, {}, fonts::heeboRegular(), fontHeight),
      sceneNext("SCENE NEXT"),
      scenePrevious("SCENE PREVIOUS"),
      tooltipWindow(&logoButton, tooltipDelayMilliseconds) {
    placeChildren();
    setUpSliders();
    sceneNext.setComponentID("SceneButtonNext");
    scenePrevious.setComponentID("SceneButtonPrevious");
    logoButton.setTooltip("v1.7.0 b15");
}

void MainComponent::placeChildren() {
    const auto place = [this](juce::Component& child, juce::Rectangle<int> bounds) {
        child.setBounds(bounds);
        addAndMakeVisible(child);
    };
    place(speakerSetup, {12, 571, 107, 24});
    place(scene, {282, 571, 107, 24});
    place(scenePrevious, {391, 570, 24, 24});
    place(sceneNext, {415, 570, 24, 24});
    place(ambience, {460, 569, 156, 24});
    place(ambienceTextBox, {577, 549, 36, 18});
    place(focus, {640, 569, 156, 24});
    place(focusTextBox, {757, 549, 36, 18});
    place(headRotation, {864, 558, 72, 72});
    place(headRotationTextBox, {822, 573, 36, 18});
    place(masterGain, {990, 558, 72, 72});
    place(masterGainTextBox, {952, 573, 36, 18});
    place(logoButton, {892, 10, 180, 70});
    addAndMakeVisible(tooltipWindow);
    addChildComponent(warningOverlay);
}

void MainComponent::setUpSliders() {
    const auto resettable = [](juce::Slider& slider, double value) {
        slider.setValue(value, juce::sendNotificationSync);
        slider.setDoubleClickReturnValue(true, value, juce::ModifierKeys::altModifier);
    };
    ambience.setRange(0.0, 100.0, 1.0);
    resettable(ambience, 50.0);
    focus.setRange(-100.0, 100.0,
                   0.1); // Deliberate: finer than the host's parameter, whose steps are whole numbers.
    resettable(focus, 0.0);
    headRotation.setRotaryParameters(3.1415927f, 9.424778f, false);
    headRotation.setRange(-180.0, 180.0, 1.0);
    resettable(headRotation, 0.0);
    masterGain.setRange(-96.0, 24.0, 0.1);
    for (juce::Slider* const slider :
         {static_cast<juce::Slider*>(&focus), static_cast<juce::Slider*>(&masterGain)}) {
        auto parameters = slider->getRotaryParameters();
        parameters.stopAtEnd = true;
        slider->setRotaryParameters(parameters);
    }
}

void MainComponent::paint(juce::Graphics& g) {
    g.setImageResamplingQuality(juce::Graphics::highResamplingQuality);
    windowPicture.draw(g, backgroundImage, speakerImage);
}

void MainComponent::resized() { warningOverlay.setBounds(getLocalBounds()); }

void MainComponent::errorStateChanged(bool error) { warningOverlay.setVisible(error); }

} // namespace orvane::kestrum
