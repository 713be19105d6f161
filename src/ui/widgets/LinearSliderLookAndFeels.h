// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/widgets/LinearSliderLookAndFeelBase.h"

namespace orvane {

// One class per kind of straight slider: which track, which thumb, and whether the track shows from its middle. Long
// ones take the thumb of the short ones that they derive from.

class HorizontalSliderLookAndFeel : public LinearSliderLookAndFeelBase<false> {
public:
    juce::Image getThumbImage() override;
    juce::Image getTrackImage() override;
};

class HorizontalSliderCenteredLookAndFeel : public LinearSliderLookAndFeelBase<true> {
public:
    juce::Image getThumbImage() override;
    juce::Image getTrackImage() override;
};

class HorizontalSliderMiddleLookAndFeel final : public LinearSliderLookAndFeelBase<true> {
public:
    juce::Image getThumbImage() override;
    juce::Image getTrackImage() override;
};

class HorizontalSliderLongLookAndFeel final : public HorizontalSliderLookAndFeel {
public:
    juce::Image getTrackImage() override;
};

class HorizontalSliderLongCenteredLookAndFeel : public HorizontalSliderCenteredLookAndFeel {
public:
    juce::Image getTrackImage() override;
};

class VerticalSliderLongCenteredLookAndFeel final : public HorizontalSliderLongCenteredLookAndFeel {
public:
    juce::Image getTrackImage() override;
};

class VerticalSliderLongCenteredMicroLookAndFeel final : public LinearSliderLookAndFeelBase<true> {
public:
    juce::Image getThumbImage() override;
    juce::Image getTrackImage() override;
};

} // namespace orvane
