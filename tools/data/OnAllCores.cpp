// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/OnAllCores.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace orvane::kestrum::tools {

void onAllCores(std::size_t count, const std::function<void(std::size_t)>& work) {
    std::atomic<std::size_t> next = 0;
    std::exception_ptr failure;
    std::mutex failing;
    const auto take = [&] {
        try {
            for (std::size_t index = next++; index < count; index = next++)
                work(index);
        } catch (...) {
            const std::lock_guard lock(failing);
            failure = std::current_exception();
            next = count;
        }
    };
    std::vector<std::thread> threads(std::max(1U, std::thread::hardware_concurrency()) - 1);
    for (std::thread& thread : threads)
        thread = std::thread(take);
    take();
    for (std::thread& thread : threads)
        thread.join();
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace orvane::kestrum::tools
