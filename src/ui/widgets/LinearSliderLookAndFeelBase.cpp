// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/LinearSliderLookAndFeelBase.h"

#include <algorithm>

namespace orvane {

namespace {

/// The track with all its lines erased but those from the anchor to `pos`.
juce::Image shownTrack(const juce::Image& track, bool horizontal, float anchor, float pos) {
    auto shown = track.createCopy();
    const int length = horizontal ? track.getWidth() : track.getHeight();
    const float fraction = pos / (static_cast<float>(length) / 2.0f);
    const float first = std::min(anchor, fraction);
    const float last = std::max(anchor, fraction);
    for (int i = 0; i < length; ++i) {
        const float f = static_cast<float>(i) / static_cast<float>(length);
        if (f < first || f >= last)
            shown.clear(horizontal ? juce::Rectangle<int>(i, 0, 1, track.getHeight())
                                   : juce::Rectangle<int>(0, i, track.getWidth(), 1));
    }
    return shown;
}

} // namespace

template <bool centred>
void LinearSliderLookAndFeelBase<centred>::drawLinearSlider(juce::Graphics& g, int x, int y, int width,
                                                            int height, float sliderPos,
                                                            float /*minSliderPos*/, float /*maxSliderPos*/,
                                                            juce::Slider::SliderStyle style,
                                                            juce::Slider& slider) {
    const bool horizontal = style == juce::Slider::LinearHorizontal;
    const auto thumb = getThumbImage();
    if (slider.isEnabled()) {
        const auto track = shownTrack(getTrackImage(), horizontal, centred ? 0.5f : 0.0f, sliderPos);
        g.drawImage(track, track.getBounds().toFloat() * 0.5f);
    }
    const float half = static_cast<float>(std::min(thumb.getWidth(), thumb.getHeight())) * 0.25f;
    const float along = sliderPos - half;
    const float middle = horizontal ? static_cast<float>(y) + static_cast<float>(height) * 0.5f
                                    : static_cast<float>(x) + static_cast<float>(width) * 0.5f;
    const auto across = static_cast<float>(juce::roundToInt(static_cast<double>(middle - half)));
    g.drawImage(thumb, {horizontal ? along : across, horizontal ? across : along, 2.0f * half, 2.0f * half});
}

template <bool centred>
juce::Slider::SliderLayout LinearSliderLookAndFeelBase<centred>::getSliderLayout(juce::Slider& slider) {
    juce::Slider::SliderLayout layout;
    layout.sliderBounds = slider.getLocalBounds();
    const auto thumb = getThumbImage();
    if (slider.isHorizontal())
        layout.sliderBounds.reduce(thumb.getWidth() / 4 / 2, 0);
    else
        layout.sliderBounds.reduce(0, thumb.getHeight() / 4 / 2);
    return layout;
}

template class LinearSliderLookAndFeelBase<false>;
template class LinearSliderLookAndFeelBase<true>;

} // namespace orvane
