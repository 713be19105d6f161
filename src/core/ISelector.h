// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace orvane::kestrum::core {

/// A choice between named items, by the identifiers of selectorId(), as presenters see it. Threads as ISlider.
class ISelector {
public:
    class Listener {
    public:
        virtual ~Listener() = default;

        /// Another item has been chosen; it is read back through getValue().
        virtual void valueChanged() = 0;
    };

    virtual ~ISelector() = default;

    virtual void setValue(std::uint32_t id) = 0;

    /// 0 while nothing is chosen.
    virtual std::uint32_t getValue() const = 0;

    /// Greys an item out, or not. A chosen item stays chosen.
    virtual void setItemEnabled(std::uint32_t id, bool enabled) = 0;

    /// @param listener borrowed until it is removed; a second adding changes nothing.
    virtual void addListener(Listener* listener) = 0;
    virtual void removeListener(Listener* listener) = 0;
};

} // namespace orvane::kestrum::core
