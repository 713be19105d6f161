// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/LayoutImages.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <cstdint>
#include <functional>
#include <utility>

namespace orvane::kestrum {

/// The selector of the layouts: what it shows decides on the diagram, too. A person's choice gets here by way of the
/// presenter and the value, like everyone's.
///
/// Thread  as core::ISelector.
/// Errors  setValue() and the constructor throw std::out_of_range for a layout without a diagram; an identifier that
///         comes on another thread than the message thread leaves the diagram as it is.
template <typename Selector>
class SpeakerSetup final : public Selector {
public:
    /// @param image borrowed, filled here; outlives every call.
    /// @param repaintCallback called after the image has changed.
    SpeakerSetup(juce::ComboBox& comboBox, juce::Image& image, std::uint32_t initialId,
                 std::function<void()> repaintCallback)
        : Selector(comboBox), image(&image), repaint(std::move(repaintCallback)) {
        showDiagram(initialId);
    }

private:
    void show(std::uint32_t id) override {
        Selector::show(id);
        showDiagram(id);
    }

    void showDiagram(std::uint32_t id) {
        const auto [data, size] = layoutImage(id);
        *image = juce::ImageCache::getFromMemory(data, size);
        if (repaint)
            repaint();
    }

    juce::Image* image;
    std::function<void()> repaint;
};

} // namespace orvane::kestrum
