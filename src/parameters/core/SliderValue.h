// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/ISliderValue.h"
#include "parameters/zmtl/Listeners.h"

#include <atomic>
#include <type_traits>

namespace orvane::kestrum::core::internal {

/// The slider value in two strengths.
///
/// `SliderValue<std::atomic<float>>` is for the value that the renderers read: its store is an exchange in
/// one total order with all others. `SliderValue<float>` compiles to plain loads and stores, but is free of
/// data races too, since the mappers read it on the audio thread after an engine swap.
template <typename Storage>
class SliderValue final : public ISliderValue {
    static_assert(std::is_same_v<Storage, float> || std::is_same_v<Storage, std::atomic<float>>);

public:
    explicit SliderValue(float value) noexcept : value(value) {}

    void addListener(Listener* listener) override { listeners.add(listener); }
    void removeListener(Listener* listener) override { listeners.remove(listener); }

    float getValue() const noexcept override {
        if constexpr (std::is_same_v<Storage, float>)
            return value.load(std::memory_order_relaxed);
        else
            return value.load();
    }

    void setValue(float newValue) override {
        // Deliberate: plain equality, so that a NaN that is held makes every further call a change.
        if (newValue == getValue())
            return;
        if constexpr (std::is_same_v<Storage, float>)
            value.store(newValue, std::memory_order_relaxed);
        else
            value.exchange(newValue);
        listeners.notify([](Listener& listener) { listener.valueChanged(); });
    }

private:
    std::atomic<float> value;
    zmtl::ListenerSet<Listener> listeners; ///< Called in the order of their addresses.
};

} // namespace orvane::kestrum::core::internal
