// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/widgets/PictureSlider.h"

namespace orvane {

// The straight sliders. They have the framework's range, 0 to 10, until their owner sets one.

class HorizontalSlider final : public PictureSlider {
public:
    explicit HorizontalSlider(const juce::String& name);
};

class HorizontalSliderCentered final : public PictureSlider {
public:
    explicit HorizontalSliderCentered(const juce::String& name);
};

class HorizontalSliderMiddleCentered final : public PictureSlider {
public:
    explicit HorizontalSliderMiddleCentered(const juce::String& name);
};

class HorizontalSliderLong final : public PictureSlider {
public:
    explicit HorizontalSliderLong(const juce::String& name);
};

class HorizontalSliderLongCentered final : public PictureSlider {
public:
    explicit HorizontalSliderLongCentered(const juce::String& name);
};

class VerticalSliderLongCentered final : public PictureSlider {
public:
    explicit VerticalSliderLongCentered(const juce::String& name);
};

class VerticalSliderLongCenteredBig final : public PictureSlider {
public:
    explicit VerticalSliderLongCenteredBig(const juce::String& name);
};

} // namespace orvane
