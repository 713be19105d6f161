// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum::core {

/// A user value on a scale. It outlives every editor and is watched by mappers and presenters.
///
/// Thread  getValue() from any thread, wait-free. setValue() on any thread, calls listeners on that thread and
///         is not meant for rendering. Listeners come and go on any thread that may take a mutex, also while values
///         are set on others; zmtl::Listeners tells what a removal means.
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
