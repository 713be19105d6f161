// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/ISelectorValue.h"
#include "parameters/zmtl/Listeners.h"

#include <atomic>

namespace orvane::kestrum::core {

/// The one implementation of the selector value: an atomic word and its listeners.
class SelectorValue final : public ISelectorValue {
public:
    explicit SelectorValue(std::uint32_t id) noexcept : value(id) {}

    std::uint32_t getValue() const noexcept override { return value.load(); }
    void setValue(std::uint32_t id) override;
    void addListener(Listener* listener) override { listeners.add(listener); }
    void removeListener(Listener* listener) override { listeners.remove(listener); }

private:
    std::atomic<std::uint32_t> value;
    zmtl::ListenerSet<Listener> listeners; ///< Called in the order of their addresses.
};

} // namespace orvane::kestrum::core
