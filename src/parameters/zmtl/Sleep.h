// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/zmtl/ISleep.h"

#include <memory>
#include <mutex>
#include <utility>

namespace zmtl::internal {

/// A sleep on a condition variable. Several sleeps can share one mutex.
template <typename ConditionVariable>
class Sleep final : public ISleep {
public:
    Sleep() : Sleep(std::make_shared<std::mutex>()) {}

    /// @param mutex never null; held only for the instant before and after a wait.
    explicit Sleep(std::shared_ptr<std::mutex> mutex) : mutex(std::move(mutex)) {}

    void sleepFor(std::chrono::milliseconds time) override {
        std::unique_lock lock(*mutex);
        condition.wait_for(lock, time);
    }

    void wake() override { condition.notify_all(); }

private:
    std::shared_ptr<std::mutex> mutex;
    ConditionVariable condition;
};

} // namespace zmtl::internal
