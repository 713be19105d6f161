// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum::core {

/// A control that is on or off, as presenters see it. Threads as ISlider.
class IToggle {
public:
    class Listener {
    public:
        virtual ~Listener() = default;

        /// The control has been switched; the new state is read back through getValue().
        virtual void valueChanged() = 0;
    };

    virtual ~IToggle() = default;

    virtual void setValue(bool value) = 0;
    virtual bool getValue() const = 0;

    /// @param listener borrowed until it is removed; a second adding changes nothing.
    virtual void addListener(Listener* listener) = 0;
    virtual void removeListener(Listener* listener) = 0;
};

} // namespace orvane::kestrum::core
