// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "room/Reflection.h"

#include <cstddef>
#include <vector>

namespace orvane {

/// Reflections in a vector that is sized once and never grows.
///
/// Thread  the constructor allocates; everything else is fit for the audio thread.
class ReflectionList {
public:
    /// @param capacity how many reflections fit in.
    explicit ReflectionList(std::size_t capacity);

    /// @throws std::out_of_range "capacity overflow" when the list is full.
    void push(const Reflection& reflection);

    std::size_t size() const noexcept ORVANE_REALTIME { return count; }
    Reflection& operator[](std::size_t index) noexcept ORVANE_REALTIME { return entries[index]; }
    const Reflection& operator[](std::size_t index) const noexcept ORVANE_REALTIME { return entries[index]; }
    Reflection* begin() noexcept ORVANE_REALTIME { return entries.data(); }
    Reflection* end() noexcept ORVANE_REALTIME { return entries.data() + count; }
    const Reflection* begin() const noexcept ORVANE_REALTIME { return entries.data(); }
    const Reflection* end() const noexcept ORVANE_REALTIME { return entries.data() + count; }

private:
    std::vector<Reflection> entries;
    std::size_t count = 0; ///< Used entries.
};

} // namespace orvane
