// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/IBackgroundImage.h"
#include "ui/LatestValue.h"
#include "ui/MessageThread.h"

#include <juce_graphics/juce_graphics.h>

#include <functional>
#include <map>

namespace orvane::kestrum {

/// Fills an image with the sharp or the blurred background.
///
/// Thread  as core::IBackgroundImage.
class BackgroundImage final : public core::IBackgroundImage {
public:
    /// Starts with the sharp one.
    ///
    /// @param target borrowed, filled here; outlives every call.
    /// @param repaintCallback called after the image has changed.
    BackgroundImage(juce::Image& target, std::function<void()> repaintCallback);

    void setBlurred(bool blurred) override;

private:
    void show(bool blurred);
    void applyPending();

    juce::Image* image;
    std::function<void()> repaint;
    std::map<int, juce::Image> images; ///< 0 sharp, 1 blurred.
    LatestValue<bool> pendingBlurred;
    MessageThread messageThread{[this] { applyPending(); }};
};

} // namespace orvane::kestrum
