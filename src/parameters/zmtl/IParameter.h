// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace zmtl {

/// One value of the rendering side, written by anyone and read by the audio thread.
///
/// Thread  set() and get() from any thread, wait-free as long as nobody is notified. Listeners come and go on any
///         thread that may take a mutex, also while values are set on others; see Listeners for what a removal means.
template <typename T>
class IParameter {
public:
    class Listener {
    public:
        virtual ~Listener() = default;

        /// Called synchronously on the thread that made the change; the value is read back from `parameter`.
        virtual void parameterChanged(IParameter<T>& parameter) = 0;
    };

    virtual ~IParameter() = default;

    /// Stores `value` in every case.
    ///
    /// @param notify whether a value unequal to the previous one is told to the listeners.
    virtual void set(const T& value, bool notify) = 0;
    virtual T get() const noexcept = 0;

    /// Appends; a listener that is added twice is called twice.
    ///
    /// @param listener borrowed until it is removed.
    /// @throws std::length_error "list<T> too long" when the list can hold no more, std::bad_alloc.
    virtual void addListener(Listener* listener) = 0;

    /// Removes every occurrence of `listener`.
    virtual void removeListener(Listener* listener) = 0;
};

} // namespace zmtl
