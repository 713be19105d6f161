// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/SelectorValue.h"

namespace orvane::kestrum::core {

void SelectorValue::setValue(std::uint32_t id) {
    if (id == value.load())
        return;
    value.exchange(id);
    listeners.notify([](Listener& listener) { listener.valueChanged(); });
}

} // namespace orvane::kestrum::core
