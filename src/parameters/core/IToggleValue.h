// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum::core {

/// A user value that is on or off. Threads as ISliderValue.
class IToggleValue {
public:
    class Listener {
    public:
        virtual ~Listener() = default;

        /// The new value is read back through getValue().
        virtual void valueChanged() = 0;
    };

    virtual ~IToggleValue() = default;

    /// @param listener borrowed until it is removed; a second adding changes nothing.
    virtual void addListener(Listener* listener) = 0;
    virtual void removeListener(Listener* listener) = 0;
    virtual bool getValue() const noexcept = 0;

    /// Silent when nothing changes.
    virtual void setValue(bool value) = 0;
};

} // namespace orvane::kestrum::core
