// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/IWatchDog.h"
#include "ui/WarningOverlay.h"
#include "ui/WindowPicture.h"
#include "ui/widgets/ArrowButtons.h"
#include "ui/widgets/ComboBoxes.h"
#include "ui/widgets/LinearSliders.h"
#include "ui/widgets/RotarySliders.h"
#include "ui/widgets/SliderBoxTextBox.h"

#include <juce_gui_basics/juce_gui_basics.h>

namespace orvane::kestrum {

/// All widgets of the editor, at fixed places over one picture of 1080 by 636. It knows neither values nor presenters:
/// the editor that owns it wires the widgets and fills the two images.
///
/// Thread  message thread.
class MainComponent final : public juce::Component, public IWatchDog::Listener {
public:
    MainComponent();

    void paint(juce::Graphics& g) override;
    void resized() override;
    void errorStateChanged(bool error) override;

    juce::Image backgroundImage; ///< Both twice the displayed size.
    juce::Image speakerImage;    ///< Transparent but for the diagram; lies over the upper part.
    ComboBox24px speakerSetup;
    ComboBox24px scene;
    HorizontalSliderMiddleCentered ambience;
    SliderBoxTextBox ambienceTextBox;
    HorizontalSliderMiddleCentered focus;
    SliderBoxTextBox focusTextBox;
    RotarySliderFullCircle headRotation; ///< Degrees.
    SliderBoxTextBox headRotationTextBox;
    RotarySliderGain masterGain; ///< Decibels.
    SliderBoxTextBox masterGainTextBox;
    ArrowButtonRight sceneNext;    ///< Component id "SceneButtonNext".
    ArrowButtonLeft scenePrevious; ///< Component id "SceneButtonPrevious".
    WarningOverlay warningOverlay; ///< Hidden until errorStateChanged().
    juce::ImageButton logoButton;  ///< A bare area over the logo in the picture, for its tooltip.
    juce::TooltipWindow tooltipWindow;

private:
    void placeChildren();
    void setUpSliders();

    WindowPicture windowPicture;
};

} // namespace orvane::kestrum
