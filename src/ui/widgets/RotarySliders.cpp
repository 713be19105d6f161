// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/RotarySliders.h"

#include "Resources.h"

namespace orvane {

namespace {

constexpr float gainStart = 3.839724f; // 220 degrees
constexpr float gainEnd = 8.604474f;   // 493 degrees
constexpr float start = 3.926991f;     // 225 degrees
constexpr float end = 8.63938f;        // 495 degrees

struct Pictures {
    const char* pointer;
    int pointerSize;
    const char* ring;
    int ringSize;
};
const Pictures bigPictures{resources::rotary_big_pointer_png, resources::rotary_big_pointer_pngSize,
                           resources::rotary_big_ring_png, resources::rotary_big_ring_pngSize};
const Pictures middlePictures{resources::rotary_pointer_png, resources::rotary_pointer_pngSize,
                              resources::rotary_ring_png, resources::rotary_ring_pngSize};
const Pictures fullCirclePictures{resources::rotary_pointer_png, resources::rotary_pointer_pngSize,
                                  resources::rotary_full_circle_ring_png,
                                  resources::rotary_full_circle_ring_pngSize};
const Pictures smallPictures{resources::rotary_small_pointer_png, resources::rotary_small_pointer_pngSize,
                             resources::rotary_small_ring_png, resources::rotary_small_ring_pngSize};

/// One for each kind of dial, for the life of the process.
template <typename Kind>
RotarySliderLookAndFeel& shared(const Pictures& pictures, bool centred) {
    static RotarySliderLookAndFeel lookAndFeel(pictures.pointer, pictures.pointerSize, pictures.ring,
                                               pictures.ringSize, centred);
    return lookAndFeel;
}

} // namespace

PictureDial::PictureDial(const juce::String& name, RotarySliderLookAndFeel& lookAndFeel, const Scale& scale,
                         bool stopsAtEnd)
    : PictureSlider(name, RotaryHorizontalVerticalDrag, lookAndFeel) {
    setRange(scale.minimum, scale.maximum);
    setRotaryParameters(scale.startAngle, scale.endAngle, stopsAtEnd);
    setDoubleClickReturnValue(true, scale.reset, resetModifier);
}

RotarySliderGainBig::RotarySliderGainBig(const juce::String& name)
    : PictureDial(name, shared<RotarySliderGainBig>(bigPictures, false),
                  {-96.0, 24.0, 0.0, gainStart, gainEnd}, true) {}

RotarySliderGain::RotarySliderGain(const juce::String& name)
    : PictureDial(name, shared<RotarySliderGain>(middlePictures, false),
                  {-96.0, 24.0, 0.0, gainStart, gainEnd}, true) {}

RotarySlider::RotarySlider(const juce::String& name)
    : PictureDial(name, shared<RotarySlider>(middlePictures, false), {0.0, 1.0, 0.0, start, end}, true) {}

RotarySliderCentered::RotarySliderCentered(const juce::String& name)
    : PictureDial(name, shared<RotarySliderCentered>(middlePictures, true), {0.0, 1.0, 0.5, start, end},
                  true) {}

RotarySliderFullCircle::RotarySliderFullCircle(const juce::String& name)
    : PictureDial(name, shared<RotarySliderFullCircle>(fullCirclePictures, true), {0.0, 1.0, 0.5, start, end},
                  false) {
    setValue(0.5, juce::dontSendNotification);
}

RotarySliderSmallGain::RotarySliderSmallGain(const juce::String& name)
    : PictureDial(name, shared<RotarySliderSmallGain>(smallPictures, false),
                  {-96.0, 24.0, 0.0, gainStart, gainEnd}, true) {}

juce::String RotarySliderSmallGain::valueToString(double value) const {
    return juce::String(value, 1) + " dB";
}

double RotarySliderSmallGain::stringToValue(const juce::String& text) const { return text.getDoubleValue(); }

RotarySliderSmallGainOffset::RotarySliderSmallGainOffset(const juce::String& name)
    : PictureDial(name, shared<RotarySliderSmallGainOffset>(smallPictures, false),
                  {-25.0, 15.0, 0.0, gainStart, gainEnd}, false) {}

RotarySliderSmall::RotarySliderSmall(const juce::String& name)
    : PictureDial(name, shared<RotarySliderSmall>(smallPictures, false), {0.0, 1.0, 0.0, start, end}, true) {}

RotarySliderCenteredSmall::RotarySliderCenteredSmall(const juce::String& name)
    : PictureDial(name, shared<RotarySliderCenteredSmall>(smallPictures, true), {0.0, 1.0, 0.5, start, end},
                  true) {}

} // namespace orvane
