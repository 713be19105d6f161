// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/widgets/IStringValueConverter.h"
#include "ui/widgets/PictureSlider.h"
#include "ui/widgets/RotarySliderLookAndFeel.h"

namespace orvane {

/// A dial that is turned by dragging up or to the right.
class PictureDial : public PictureSlider {
protected:
    /// Angles in radians, clockwise from the top.
    struct Scale {
        double minimum;
        double maximum;
        double reset;
        float startAngle;
        float endAngle;
    };

    PictureDial(const juce::String& name, RotarySliderLookAndFeel& lookAndFeel, const Scale& scale,
                bool stopsAtEnd);
};

// The dials. An owner may give them another range and other angles.

/// Decibels, -96 to 24.
class RotarySliderGainBig final : public PictureDial {
public:
    explicit RotarySliderGainBig(const juce::String& name);
};

/// Decibels, -96 to 24.
class RotarySliderGain final : public PictureDial {
public:
    explicit RotarySliderGain(const juce::String& name);
};

/// 0 to 1.
class RotarySlider final : public PictureDial {
public:
    explicit RotarySlider(const juce::String& name);
};

/// 0 to 1, shown from its middle.
class RotarySliderCentered final : public PictureDial {
public:
    explicit RotarySliderCentered(const juce::String& name);
};

/// 0 to 1, at 0.5 to begin with, shown from its middle; runs on over the end.
class RotarySliderFullCircle final : public PictureDial {
public:
    explicit RotarySliderFullCircle(const juce::String& name);
};

/// Decibels, -96 to 24, and says so.
class RotarySliderSmallGain final : public PictureDial, public IStringValueConverter {
public:
    explicit RotarySliderSmallGain(const juce::String& name);

    juce::String valueToString(double value) const override; ///< "-3.5 dB".
    double stringToValue(const juce::String& text) const override;
    juce::String getTextFromValue(double value) override { return valueToString(value); }
    double getValueFromText(const juce::String& text) override { return stringToValue(text); }
};

/// Decibels, -25 to 15; runs on over the end.
class RotarySliderSmallGainOffset final : public PictureDial {
public:
    explicit RotarySliderSmallGainOffset(const juce::String& name);
};

/// 0 to 1.
class RotarySliderSmall final : public PictureDial {
public:
    explicit RotarySliderSmall(const juce::String& name);
};

/// 0 to 1, shown from its middle.
class RotarySliderCenteredSmall final : public PictureDial {
public:
    explicit RotarySliderCenteredSmall(const juce::String& name);
};

} // namespace orvane
