// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/BackgroundImage.h"

#include "Resources.h"
#include "ui/widgets/Pictures.h"

#include <utility>

namespace orvane::kestrum {

BackgroundImage::BackgroundImage(juce::Image& target, std::function<void()> repaintCallback)
    : image(&target),
      repaint(std::move(repaintCallback)),
      images{{0, picture(resources::normal_png, resources::normal_pngSize)},
             {1, picture(resources::blurred_png, resources::blurred_pngSize)}} {
    *image = images.at(0);
}

void BackgroundImage::setBlurred(bool blurred) {
    if (!messageThread.isCurrent()) {
        pendingBlurred.store(blurred);
        return;
    }
    pendingBlurred.discard();
    show(blurred);
}

void BackgroundImage::show(bool blurred) {
    const auto& wanted = images.at(blurred ? 1 : 0);
    if (*image == wanted) // the same pixels, not equal ones
        return;
    *image = wanted;
    if (repaint)
        repaint();
}

void BackgroundImage::applyPending() {
    if (const auto blurred = pendingBlurred.take())
        show(*blurred);
}

} // namespace orvane::kestrum
