// SPDX-License-Identifier: GPL-3.0-or-later
#include "ipc/HeadRotation.h"

#include <algorithm>
#include <atomic>

namespace OrvaneIPC {

namespace {

/// Holds bit 0 of the record's lock for the length of a scope.
class SpinGuard {
public:
    explicit SpinGuard(std::uint32_t& word) noexcept : lock(word) {
        while ((lock.fetch_or(1u) & 1u) != 0)
            ;
    }
    ~SpinGuard() { lock.store(0u); }
    SpinGuard(const SpinGuard&) = delete;
    SpinGuard& operator=(const SpinGuard&) = delete;

private:
    std::atomic_ref<std::uint32_t> lock;
};

static_assert(std::atomic_ref<std::uint32_t>::is_always_lock_free);
static_assert(std::atomic_ref<std::uint8_t>::is_always_lock_free);

} // namespace

bool HeadRotation::isActive() const noexcept { return std::atomic_ref(data->active).load() != 0; }

orvane::HeadRotationMatrix HeadRotation::getRotation() const noexcept {
    orvane::HeadRotationMatrix result;
    const SpinGuard guard(data->lock);
    std::copy(std::begin(data->rotation), std::end(data->rotation), result.begin());
    return result;
}

void HeadRotation::setRotation(const orvane::HeadRotationMatrix& matrix) noexcept {
    const orvane::HeadRotationMatrix copy = matrix; // only the copy into the record is done under the lock
    const SpinGuard guard(data->lock);
    std::copy(copy.begin(), copy.end(), std::begin(data->rotation));
}

void HeadRotation::setActive(bool active) noexcept { std::atomic_ref(data->active).exchange(active ? 1 : 0); }

} // namespace OrvaneIPC
