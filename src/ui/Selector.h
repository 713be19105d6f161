// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/ISelector.h"
#include "parameters/zmtl/Listeners.h"
#include "ui/LatestItemStates.h"
#include "ui/LatestValue.h"
#include "ui/MessageThread.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <cstdint>

namespace orvane::kestrum {

/// A combo box as presenters see it: item ids are the selector's identifiers. It outlives the widget.
///
/// Thread  as core::ISelector.
class Selector : public core::ISelector, public juce::ComboBox::Listener {
public:
    /// @param widget borrowed; may die first.
    explicit Selector(juce::ComboBox& widget);
    ~Selector() override;
    Selector(const Selector&) = delete;
    Selector& operator=(const Selector&) = delete;

    void setValue(std::uint32_t id) final;
    std::uint32_t getValue() const override;
    void setItemEnabled(std::uint32_t id, bool enabled) override;
    void addListener(core::ISelector::Listener* listener) override { listeners.add(listener); }
    void removeListener(core::ISelector::Listener* listener) override { listeners.remove(listener); }

    /// A widget reports a choice some time after it was made. When another thread has chosen meanwhile, that choice
    /// holds, and is not overwritten by what the widget still shows.
    void comboBoxChanged(juce::ComboBox* changed) override;

protected:
    /// Shows `id` without telling anyone. Message thread only.
    virtual void show(std::uint32_t id);

    juce::ComboBox* widget() const { return comboBox.getComponent(); } ///< Null when it has died.

private:
    void applyPending();

    juce::Component::SafePointer<juce::ComboBox> comboBox;
    zmtl::ListenerSet<core::ISelector::Listener> listeners;
    LatestValue<std::uint32_t> pendingId;
    LatestItemStates pendingItems;
    MessageThread messageThread{[this] { applyPending(); }};
};

} // namespace orvane::kestrum
