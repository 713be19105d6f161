// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum::core {

/// A user value on a scale. It outlives every editor and is watched by mappers and presenters.
///
/// Thread  getValue() from any thread, wait-free. setValue() calls listeners on the calling thread and is not
///         meant for rendering; the listener set is guarded by nothing.
class ISliderValue {
public:
    class Listener {
    public:
        virtual ~Listener() = default;

        /// The new value is read back through getValue().
        virtual void valueChanged() = 0;
    };

    virtual ~ISliderValue() = default;

    /// @param listener borrowed until it is removed; a second adding changes nothing.
    virtual void addListener(Listener* listener) = 0;
    virtual void removeListener(Listener* listener) = 0;
    virtual float getValue() const noexcept = 0;

    /// Silent when the value is equal to the one that is held: that is what ends change loops.
    virtual void setValue(float value) = 0;
};

} // namespace orvane::kestrum::core
