// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/IReloadNotifier.h"

#include <atomic>

namespace test {

/// Counts reload requests for as long as it lives.
class CountingReloadListener final : public orvane::IReloadListener {
public:
    explicit CountingReloadListener(orvane::IReloadNotifier& notifier) : notifier(&notifier) {
        notifier.addReloadListener(this);
    }
    ~CountingReloadListener() override { notifier->removeReloadListener(this); }
    CountingReloadListener(const CountingReloadListener&) = delete;
    CountingReloadListener& operator=(const CountingReloadListener&) = delete;

    void reloadRequested() override { ++count; }

    std::atomic<int> count{0};

private:
    orvane::IReloadNotifier* notifier;
};

} // namespace test
