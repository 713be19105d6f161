// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "binaural/fft/Complex.h"

#include <cstddef>

namespace orvane::fft {

enum class Direction { forward, backward };

/// What the FFT library made of one direction and length; it belongs to the module's cache and lives as long
/// as that.
///
/// Shape   from Complex [length] to other Complex [length], unscaled; both must fitsPlans().
/// Thread  run() by any number of threads at a time.
class Plan {
public:
    explicit Plan(void* libraryPlan) noexcept : handle(libraryPlan) {}

    void run(const Complex* values, Complex* transformed) const noexcept ORVANE_REALTIME;

private:
    void* handle; ///< The library's pointer, whose type its header keeps to itself.
};

/// The module's plan, made at the first call. Estimated, not measured, so that the same length gives the same
/// bits on every run.
///
/// Thread  any that may wait: one mutex guards the cache from the first plan to the last one's end, since the
///         library's planner is not thread-safe.
/// Errors  std::bad_alloc.
Plan planFor(Direction direction, std::size_t length);

/// Whether plans run on this memory; whatever starts at a cache line does.
bool fitsPlans(const void* memory) noexcept ORVANE_REALTIME;

} // namespace orvane::fft
