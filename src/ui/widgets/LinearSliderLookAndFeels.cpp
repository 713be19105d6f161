// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/LinearSliderLookAndFeels.h"

#include "Resources.h"
#include "ui/widgets/Pictures.h"

namespace orvane {

juce::Image HorizontalSliderLookAndFeel::getThumbImage() {
    return picture(resources::slider_thumb_png, resources::slider_thumb_pngSize);
}

juce::Image HorizontalSliderLookAndFeel::getTrackImage() {
    return picture(resources::slider_track_png, resources::slider_track_pngSize);
}

juce::Image HorizontalSliderCenteredLookAndFeel::getThumbImage() {
    return picture(resources::slider_centered_thumb_png, resources::slider_centered_thumb_pngSize);
}

juce::Image HorizontalSliderCenteredLookAndFeel::getTrackImage() {
    return picture(resources::slider_centered_track_png, resources::slider_centered_track_pngSize);
}

juce::Image HorizontalSliderMiddleLookAndFeel::getThumbImage() {
    return picture(resources::slider_thumb_png, resources::slider_thumb_pngSize);
}

juce::Image HorizontalSliderMiddleLookAndFeel::getTrackImage() {
    return picture(resources::slider_middle_track_png, resources::slider_middle_track_pngSize);
}

juce::Image HorizontalSliderLongLookAndFeel::getTrackImage() {
    return picture(resources::slider_long_track_png, resources::slider_long_track_pngSize);
}

juce::Image HorizontalSliderLongCenteredLookAndFeel::getTrackImage() {
    return picture(resources::slider_long_centered_track_png, resources::slider_long_centered_track_pngSize);
}

juce::Image VerticalSliderLongCenteredLookAndFeel::getTrackImage() {
    return picture(resources::slider_vertical_track_png, resources::slider_vertical_track_pngSize);
}

juce::Image VerticalSliderLongCenteredMicroLookAndFeel::getThumbImage() {
    return picture(resources::slider_vertical_micro_thumb_png,
                   resources::slider_vertical_micro_thumb_pngSize);
}

juce::Image VerticalSliderLongCenteredMicroLookAndFeel::getTrackImage() {
    return picture(resources::slider_vertical_micro_track_png,
                   resources::slider_vertical_micro_track_pngSize);
}

} // namespace orvane
