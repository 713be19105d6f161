// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/SelectorValue.h"

namespace orvane::kestrum::core {

void SelectorValue::setValue(std::uint32_t id) {
    if (id == value.load())
        return;
    value.exchange(id);
    for (Listener* const listener : listeners)
        listener->valueChanged();
}

} // namespace orvane::kestrum::core
