// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/ISlider.h"
#include "parameters/zmtl/Listeners.h"
#include "ui/LatestValue.h"
#include "ui/MessageThread.h"

#include <juce_gui_basics/juce_gui_basics.h>

namespace orvane::kestrum {

/// A slider widget as presenters see it. It outlives the widget, and no gesture is ever reported to a host.
///
/// On the message thread, setValue() moves the widget and tells everyone who listens to it. What came from another
/// thread is shown in the same way, but not told to the presenter: the widget lands on its steps, and a host's value
/// must not come back changed.
///
/// Thread  as core::ISlider.
class Slider final : public core::ISlider, public juce::Slider::Listener, private juce::ComponentListener {
public:
    /// @param widget borrowed; may die first.
    explicit Slider(juce::Slider& widget);
    ~Slider() override;
    Slider(const Slider&) = delete;
    Slider& operator=(const Slider&) = delete;

    void setValue(float value) override;
    float getValue() const override; ///< 0 when the widget has died.
    void setEnabled(bool enabled) override;
    void addListener(core::ISlider::Listener* listener) override { listeners.add(listener); }
    void removeListener(core::ISlider::Listener* listener) override { listeners.remove(listener); }

    void sliderValueChanged(juce::Slider* changed) override;
    void sliderDragStarted(juce::Slider*) override {}
    void sliderDragEnded(juce::Slider*) override {}

private:
    void componentBeingDeleted(juce::Component& component) override;
    void applyPending();

    juce::Slider* slider;
    zmtl::ListenerSet<core::ISlider::Listener> listeners;
    bool widgetDeleted = false;
    bool muted = false; ///< While a value of another thread is being shown.
    LatestValue<float> pendingValue;
    LatestValue<bool> pendingEnabled;
    MessageThread messageThread{[this] { applyPending(); }};
};

} // namespace orvane::kestrum
