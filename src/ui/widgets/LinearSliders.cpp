// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/LinearSliders.h"

#include "ui/widgets/LinearSliderLookAndFeels.h"

namespace orvane {

namespace {

template <typename Kind>
Kind& shared() {
    static Kind lookAndFeel;
    return lookAndFeel;
}

} // namespace

HorizontalSlider::HorizontalSlider(const juce::String& name)
    : PictureSlider(name, LinearHorizontal, shared<HorizontalSliderLookAndFeel>()) {}

HorizontalSliderCentered::HorizontalSliderCentered(const juce::String& name)
    : PictureSlider(name, LinearHorizontal, shared<HorizontalSliderCenteredLookAndFeel>()) {}

HorizontalSliderMiddleCentered::HorizontalSliderMiddleCentered(const juce::String& name)
    : PictureSlider(name, LinearHorizontal, shared<HorizontalSliderMiddleLookAndFeel>()) {}

HorizontalSliderLong::HorizontalSliderLong(const juce::String& name)
    : PictureSlider(name, LinearHorizontal, shared<HorizontalSliderLongLookAndFeel>()) {}

HorizontalSliderLongCentered::HorizontalSliderLongCentered(const juce::String& name)
    : PictureSlider(name, LinearHorizontal, shared<HorizontalSliderLongCenteredLookAndFeel>()) {}

VerticalSliderLongCentered::VerticalSliderLongCentered(const juce::String& name)
    : PictureSlider(name, LinearVertical, shared<VerticalSliderLongCenteredLookAndFeel>()) {}

VerticalSliderLongCenteredBig::VerticalSliderLongCenteredBig(const juce::String& name)
    : PictureSlider(name, LinearVertical, shared<VerticalSliderLongCenteredMicroLookAndFeel>()) {}

} // namespace orvane
