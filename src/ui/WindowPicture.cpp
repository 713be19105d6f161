// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/WindowPicture.h"

namespace orvane::kestrum {

namespace {

void drawHalved(juce::Graphics& g, const juce::Image& image) {
    g.drawImage(image, image.getBounds().toFloat() * 0.5f, juce::RectanglePlacement::onlyReduceInSize);
}

} // namespace

void WindowPicture::draw(juce::Graphics& g, const juce::Image& background, const juce::Image& diagram) {
    const float scale = g.getInternalContext().getPhysicalPixelScaleFactor();
    if (scale != keptScale)
        keptBackground = keptDiagram = {};
    keptScale = scale;
    const bool newBackground = update(keptBackground, background, juce::Image::RGB, scale);
    const bool newDiagram = update(keptDiagram, diagram, juce::Image::ARGB, scale);
    if (newBackground || newDiagram) {
        both = keptBackground.scaled.createCopy();
        if (both.isNull())
            both = keptDiagram.scaled;
        else
            juce::Graphics(both).drawImageAt(keptDiagram.scaled, 0, 0);
    }
    g.drawImageTransformed(both, juce::AffineTransform::scale(1.0f / scale));
}

void WindowPicture::drawAnew(juce::Graphics& g, const juce::Image& background, const juce::Image& diagram) {
    g.setImageResamplingQuality(juce::Graphics::highResamplingQuality);
    drawHalved(g, background);
    drawHalved(g, diagram);
}

/// @return whether anything changed.
bool WindowPicture::update(Layer& layer, const juce::Image& source, juce::Image::PixelFormat format,
                           float scale) {
    if (layer.source == source)
        return false;
    layer = {source, {}};
    const auto size = (source.getBounds().toFloat() * (0.5f * scale)).getSmallestIntegerContainer();
    if (!size.isEmpty()) {
        layer.scaled = juce::Image(format, size.getWidth(), size.getHeight(), true);
        juce::Graphics g(layer.scaled);
        g.setImageResamplingQuality(juce::Graphics::highResamplingQuality);
        g.addTransform(juce::AffineTransform::scale(scale));
        drawHalved(g, source);
    }
    return true;
}

} // namespace orvane::kestrum
