// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum::core {

/// A control on a scale, as presenters see it.
///
/// Thread  setValue() and setEnabled() from any thread; from another one than the message thread they are
///         wait-free and show a little later, the latest call winning. Everything else on the message thread,
///         listeners included.
class ISlider {
public:
    class Listener {
    public:
        /// The control has been moved; the new value is read back through getValue().
        /// Deliberate: stands before the destructor, unlike in the other listener interfaces.
        virtual void valueChanged() = 0;

        virtual ~Listener() = default;
    };

    virtual ~ISlider() = default;

    virtual void setValue(float value) = 0;
    virtual float getValue() const = 0;
    virtual void setEnabled(bool enabled) = 0;

    /// @param listener borrowed until it is removed; a second adding changes nothing.
    virtual void addListener(Listener* listener) = 0;
    virtual void removeListener(Listener* listener) = 0;
};

} // namespace orvane::kestrum::core
