// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/ToggleValue.h"

namespace orvane::kestrum::core {

void ToggleValue::setValue(bool newValue) {
    if (newValue == getValue())
        return;
    value.store(newValue, std::memory_order_relaxed);
    listeners.notify([](Listener& listener) { listener.valueChanged(); });
}

} // namespace orvane::kestrum::core
