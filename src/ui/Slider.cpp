// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Slider.h"

#include <cmath>

namespace orvane::kestrum {

Slider::Slider(juce::Slider& widget) : slider(&widget) {
    slider->addListener(this);
    slider->addComponentListener(this);
}

Slider::~Slider() {
    if (widgetDeleted)
        return;
    slider->removeComponentListener(this);
    slider->removeListener(this);
}

void Slider::setValue(float value) {
    if (!std::isfinite(value))
        return; // would never compare equal, and widget and value would call each other for ever
    if (!messageThread.isCurrent()) {
        pendingValue.store(value);
        return;
    }
    pendingValue.discard();
    if (!widgetDeleted)
        slider->setValue(static_cast<double>(value), juce::sendNotificationSync);
}

float Slider::getValue() const { return widgetDeleted ? 0.0f : static_cast<float>(slider->getValue()); }

void Slider::setEnabled(bool enabled) {
    if (!messageThread.isCurrent()) {
        pendingEnabled.store(enabled);
        return;
    }
    pendingEnabled.discard();
    if (!widgetDeleted)
        slider->setEnabled(enabled);
}

void Slider::sliderValueChanged(juce::Slider*) {
    if (muted)
        return;
    listeners.notify([](core::ISlider::Listener& listener) { listener.valueChanged(); });
}

void Slider::componentBeingDeleted(juce::Component&) { widgetDeleted = true; }

void Slider::applyPending() {
    const auto value = pendingValue.take();
    const auto enabled = pendingEnabled.take();
    if (widgetDeleted)
        return;
    if (value) {
        const juce::ScopedValueSetter<bool> mute(muted, true);
        slider->setValue(static_cast<double>(*value), juce::sendNotificationSync);
    }
    if (enabled)
        slider->setEnabled(*enabled);
}

} // namespace orvane::kestrum
