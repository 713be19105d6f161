// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace orvane::kestrum::core {

/// A user value that chooses one of a list of names: the identifier of selectorId(), not an index.
/// Threads as ISliderValue.
///
/// Deliberate: its operations stand in another order than those of the other two user values.
class ISelectorValue {
public:
    class Listener {
    public:
        virtual ~Listener() = default;

        /// The new value is read back through getValue().
        virtual void valueChanged() = 0;
    };

    virtual ~ISelectorValue() = default;

    virtual std::uint32_t getValue() const noexcept = 0;

    /// Silent when nothing changes. Whether the identifier means anything is the caller's matter, see
    /// ISelectorFallback.
    virtual void setValue(std::uint32_t id) = 0;

    /// @param listener borrowed until it is removed; a second adding changes nothing.
    virtual void addListener(Listener* listener) = 0;
    virtual void removeListener(Listener* listener) = 0;
};

} // namespace orvane::kestrum::core
