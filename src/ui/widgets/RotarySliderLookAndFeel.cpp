// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/RotarySliderLookAndFeel.h"

#include "ui/widgets/Pictures.h"

#include <cmath>
#include <cstddef>

namespace orvane {

namespace {

// Comparisons at the edge of a pixel hang on the last bit, so these are the numbers and not the framework's constants.
constexpr float halfTurn = 3.1415927f;
constexpr float fullTurn = 6.2831855f;

float direction(int px, int py, int width, int height) noexcept {
    const int middleX = width / 2;
    const int middleY = height / 2;
    const auto dx = static_cast<float>(px - middleX);
    const auto dy = static_cast<float>(middleY - py);
    const float a = std::atan2(-dx, -dy);
    return a < 0.0f ? a + fullTurn : a;
}

std::vector<float> directionsOf(const juce::Image& image) {
    std::vector<float> result;
    result.reserve(static_cast<std::size_t>(image.getWidth()) * static_cast<std::size_t>(image.getHeight()));
    for (int py = 0; py < image.getHeight(); ++py)
        for (int px = 0; px < image.getWidth(); ++px)
            result.push_back(direction(px, py, image.getWidth(), image.getHeight()));
    return result;
}

} // namespace

RotarySliderLookAndFeel::RotarySliderLookAndFeel(const char* pointer, int pointerSize, const char* ring,
                                                 int ringSize, bool centred)
    : pointerImage(picture(pointer, pointerSize)),
      ringImage(picture(ring, ringSize)),
      centred(centred),
      directions(directionsOf(ringImage)) {}

void RotarySliderLookAndFeel::drawRotarySlider(juce::Graphics& g, int x, int y, int width, int height,
                                               float sliderPos, float startAngle, float endAngle,
                                               juce::Slider& slider) {
    const float angle = startAngle + sliderPos * (endAngle - startAngle);
    const auto area = juce::Rectangle<int>(x, y, width, height).toFloat();
    if (slider.isEnabled())
        g.drawImage(shownRing(startAngle, angle), area);
    g.addTransform(
        juce::AffineTransform::rotation(angle, static_cast<float>(x) + static_cast<float>(width) * 0.5f,
                                        static_cast<float>(y) + static_cast<float>(height) * 0.5f));
    g.drawImage(pointerImage, area);
}

juce::Image RotarySliderLookAndFeel::shownRing(float startAngle, float angle) const {
    auto ring = ringImage.createCopy();
    if (ring.isNull())
        return ring;
    const float turned = angle - startAngle;
    const float s = angle < fullTurn ? 1.0f : -1.0f; // on which side of the top the pointer stands
    const auto shows = [&](float a) {
        const float t = a - startAngle + halfTurn;
        return centred ? s * t > turned * s && (fullTurn - startAngle) * s > s * t : turned >= t;
    };
    const juce::Image::BitmapData pixels(ring, juce::Image::BitmapData::readWrite);
    const float* a = directions.data();
    for (int py = 0; py < pixels.height; ++py)
        for (int px = 0; px < pixels.width; ++px, ++a)
            if (!shows(*a))
                pixels.setPixelColour(px, py, juce::Colours::transparentBlack);
    return ring;
}

} // namespace orvane
