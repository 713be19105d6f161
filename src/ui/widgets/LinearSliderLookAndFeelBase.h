// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace orvane {

/// Draws a straight slider from two pictures: a track, of which only the part between an anchor and the value is shown,
/// and a thumb on top. The anchor is the beginning of the track, or its middle (`centred`). A line of the track shows
/// when its beginning lies in the span, first end included, last end not: at the anchor nothing shows. A disabled
/// slider shows no track.
///
/// The travel begins an eighth of the thumb picture inside the slider, and the thumb as drawn reaches further than that:
/// at both ends of the travel the slider's edge cuts what a thumb picture has outside its inner half.
///
/// Thread  message thread. One instance serves all sliders of a kind.
template <bool centred>
class LinearSliderLookAndFeelBase : public juce::LookAndFeel_V3 {
public:
    void drawLinearSlider(juce::Graphics& g, int x, int y, int width, int height, float sliderPos,
                          float minSliderPos, float maxSliderPos, juce::Slider::SliderStyle style,
                          juce::Slider& slider) override;
    juce::Slider::SliderLayout getSliderLayout(juce::Slider& slider) override;

    virtual juce::Image getThumbImage() = 0; ///< Twice the displayed size; so is the track.
    virtual juce::Image getTrackImage() = 0;
};

extern template class LinearSliderLookAndFeelBase<false>;
extern template class LinearSliderLookAndFeelBase<true>;

} // namespace orvane
