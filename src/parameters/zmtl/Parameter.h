// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/zmtl/IParameter.h"
#include "parameters/zmtl/Listeners.h"

#include <atomic>

namespace zmtl {

/// The one implementation of a rendering value: an atomic with a list of listeners in order of registration.
///
/// Thread  see IParameter; set() and get() are sequentially consistent.
template <typename T>
class Parameter final : public IParameter<T> {
public:
    using Listener = typename IParameter<T>::Listener;

    explicit Parameter(const T& value) noexcept : value(value) {}

    void set(const T& newValue, bool notify) override {
        const T previous = value.exchange(newValue);
        // Deliberate: plain equality, so that a NaN is never equal to itself and notifies every time.
        if (previous == newValue || !notify)
            return;
        listeners.notify([this](Listener& listener) { listener.parameterChanged(*this); });
    }

    T get() const noexcept override { return value.load(); }

    void addListener(Listener* listener) override { listeners.add(listener); }
    void removeListener(Listener* listener) override { listeners.remove(listener); }

private:
    static_assert(std::atomic<T>::is_always_lock_free, "the audio thread reads it");

    std::atomic<T> value;
    ListenerList<Listener> listeners;
};

} // namespace zmtl
