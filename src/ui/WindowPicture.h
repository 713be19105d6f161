// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

namespace orvane::kestrum {

/// The window's two pictures, background and speaker diagram over it, each at half its size. Scaling pictures of that
/// size takes longer than all the rest of the window, so what comes of it is kept for as long as the pictures and the
/// scale of the screen stay the same:
///
///     background --> scaled, opaque --+
///                                     +--> both, copied at each repaint
///     diagram ------> scaled ---------+
///
/// With an opaque background the pixels are those of drawing anew.
///
/// Thread  message thread.
class WindowPicture {
public:
    void draw(juce::Graphics& g, const juce::Image& background, const juce::Image& diagram);

    /// The same without keeping anything: what draw() has to look like.
    static void drawAnew(juce::Graphics& g, const juce::Image& background, const juce::Image& diagram);

private:
    struct Layer {
        juce::Image source; ///< Held, so that no other picture can take its place in memory.
        juce::Image scaled;
    };
    static bool update(Layer& layer, const juce::Image& source, juce::Image::PixelFormat format, float scale);

    float keptScale = 0.0f; ///< Pixels of the screen per unit.
    Layer keptBackground;
    Layer keptDiagram;
    juce::Image both;
};

} // namespace orvane::kestrum
