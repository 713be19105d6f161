// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <vector>

namespace orvane {

/// Draws a dial from two pictures: a ring, of which only the part that stands for the value is shown, and a pointer on
/// top, turned to the value. A disabled dial shows no ring. Both fill the slider's rectangle whatever their sizes are.
///
///              top                    The part of the ring that shows, for start angle 220 and end angle 493 degrees:
///           .-- | --.                 not centred   from the start (lower left) clockwise to the pointer
///          /    |    \                centred       between the pointer and the top, on the pointer's side
///         (     o     )
///          \         /                A pixel shows or does not; what is half transparent in the picture stays so.
///      start '-- --' end
///
/// Units   angles in radians, clockwise from the top, as the framework counts them.
/// Thread  message thread. One instance serves all dials of a kind.
class RotarySliderLookAndFeel final : public juce::LookAndFeel_V3 {
public:
    /// @param pointer PNG, compiled in, twice the displayed size; so is `ring`, [ringSize].
    RotarySliderLookAndFeel(const char* pointer, int pointerSize, const char* ring, int ringSize,
                            bool centred);

    void drawRotarySlider(juce::Graphics& g, int x, int y, int width, int height, float sliderPos,
                          float startAngle, float endAngle, juce::Slider& slider) override;

private:
    juce::Image shownRing(float startAngle, float angle) const;

    juce::Image pointerImage;
    juce::Image ringImage;
    bool centred;
    /// Of each pixel of the ring, row by row: its direction from the middle, 0 downwards, clockwise up to 2 pi.
    std::vector<float> directions;
};

} // namespace orvane
