// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Selector.h"

#include <bit>
#include <exception>

namespace orvane::kestrum {

namespace {

int itemId(std::uint32_t id) noexcept { return std::bit_cast<int>(id); }

} // namespace

Selector::Selector(juce::ComboBox& widget) : comboBox(&widget) { widget.addListener(this); }

Selector::~Selector() {
    if (auto* const box = widget())
        box->removeListener(this);
}

void Selector::setValue(std::uint32_t id) {
    if (!messageThread.isCurrent()) {
        pendingId.store(id);
        return;
    }
    pendingId.discard();
    show(id);
}

std::uint32_t Selector::getValue() const {
    const auto* const box = widget();
    return box != nullptr ? std::bit_cast<std::uint32_t>(box->getSelectedId()) : 0;
}

void Selector::setItemEnabled(std::uint32_t id, bool enabled) {
    if (!messageThread.isCurrent()) {
        pendingItems.store(id, enabled);
        return;
    }
    pendingItems.discard(id);
    if (auto* const box = widget())
        box->setItemEnabled(itemId(id), enabled);
}

void Selector::comboBoxChanged(juce::ComboBox*) {
    if (pendingId.isWaiting()) {
        applyPending();
        return;
    }
    if (getValue() == 0)
        return; // emptied, not chosen: no value stands for that
    listeners.notify([](core::ISelector::Listener& listener) { listener.valueChanged(); });
}

void Selector::show(std::uint32_t id) {
    if (auto* const box = widget())
        box->setSelectedId(itemId(id), juce::dontSendNotification);
}

void Selector::applyPending() {
    if (const auto id = pendingId.take())
        try {
            show(*id);
        } catch (const std::exception&) {
            // An identifier that nothing is shown for has nowhere to be reported on this thread.
        }
    pendingItems.take([this](std::uint32_t id, bool enabled) {
        if (auto* const box = widget())
            box->setItemEnabled(itemId(id), enabled);
    });
}

} // namespace orvane::kestrum
