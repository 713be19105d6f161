// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/IToggleValue.h"
#include "parameters/zmtl/Listeners.h"

#include <atomic>

namespace orvane::kestrum::core {

/// The one implementation of the toggle value. Its bool is accessed as a plain one, but free of data races.
class ToggleValue final : public IToggleValue {
public:
    explicit ToggleValue(bool value) noexcept : value(value) {}

    void addListener(Listener* listener) override { listeners.add(listener); }
    void removeListener(Listener* listener) override { listeners.remove(listener); }
    bool getValue() const noexcept override { return value.load(std::memory_order_relaxed); }
    void setValue(bool newValue) override;

private:
    std::atomic<bool> value;
    zmtl::ListenerSet<Listener> listeners; ///< Called in the order of their addresses.
};

} // namespace orvane::kestrum::core
