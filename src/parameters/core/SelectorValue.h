// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/ISelectorValue.h"

#include <atomic>
#include <set>

namespace orvane::kestrum::core {

/// The one implementation of the selector value: an atomic word and its listeners.
class SelectorValue final : public ISelectorValue {
public:
    explicit SelectorValue(std::uint32_t id) noexcept : value(id) {}

    std::uint32_t getValue() const noexcept override { return value.load(); }
    void setValue(std::uint32_t id) override;
    void addListener(Listener* listener) override { listeners.insert(listener); }
    void removeListener(Listener* listener) override { listeners.erase(listener); }

private:
    std::atomic<std::uint32_t> value;
    std::set<Listener*> listeners; ///< Borrowed; called in the order of their addresses.
};

} // namespace orvane::kestrum::core
