// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/OnAllCores.h"

#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace orvane::kestrum::tools {

namespace {

/// One for every core but the caller's, or as many as the machine gives: fewer do the same work, later.
void startThreads(std::vector<std::jthread>& threads, const std::function<void()>& work) {
    try {
        for (unsigned core = 1; core < std::thread::hardware_concurrency(); ++core)
            threads.emplace_back(work);
    } catch (const std::system_error&) {
        return;
    }
}

} // namespace

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
    {
        std::vector<std::jthread> threads; // joined however this ends
        startThreads(threads, take);
        take();
    }
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace orvane::kestrum::tools
