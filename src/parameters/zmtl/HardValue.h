// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace zmtl {

/// Policy type of a filter value that takes effect at once, without smoothing.
template <typename T>
struct HardValue {
    using value_type = T;

    T value{};

    void set(T newValue) noexcept { value = newValue; }
    T get() const noexcept { return value; }
};

} // namespace zmtl
