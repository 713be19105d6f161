// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/SharedSamples.h"

#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <vector>

namespace {

using orvane::SharedSamples;
using orvane::shareSamples;

TEST(SharedSamples, EqualOnesOfAnEntryAreHeldOnce) {
    const SharedSamples first = shareSamples(7, {1, 2, 3});
    const SharedSamples second = shareSamples(7, {1, 2, 3});
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(first.use_count(), 2);
    EXPECT_EQ(*first, (std::vector<float>{1, 2, 3}));
}

TEST(SharedSamples, OtherBitsAnotherLengthOrAnotherEntryAreHeldApart) {
    const SharedSamples first = shareSamples(7, {1, 0});
    EXPECT_NE(shareSamples(7, {1, -0.0f}).get(), first.get());
    EXPECT_NE(shareSamples(7, {1}).get(), first.get());
    EXPECT_NE(shareSamples(7, {1, 0, 0}).get(), first.get());
    EXPECT_NE(shareSamples(8, {1, 0}).get(), first.get());
    const SharedSamples changed = shareSamples(7, {2, 0});
    EXPECT_EQ(*changed, (std::vector<float>{2, 0})) << "the file has changed meanwhile";
    EXPECT_EQ(shareSamples(7, {2, 0}).get(), changed.get());
    EXPECT_EQ(shareSamples(7, {1, 0}).get(), first.get());
}

TEST(SharedSamples, NotANumberIsEqualToItself) {
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    const SharedSamples first = shareSamples(7, {notANumber});
    EXPECT_EQ(shareSamples(7, {notANumber}).get(), first.get());
}

TEST(SharedSamples, GoWithTheirLastHolder) {
    SharedSamples held = shareSamples(9, std::vector<float>(1000, 1.0f));
    const std::weak_ptr<const std::vector<float>> watched = held;
    shareSamples(9, std::vector<float>(1000, 1.0f)).reset();
    EXPECT_FALSE(watched.expired());
    held.reset();
    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(shareSamples(9, {5})->size(), 1u);
}

TEST(SharedSamples, EmptyOnesAreSharedToo) {
    const SharedSamples first = shareSamples(0, {});
    EXPECT_EQ(shareSamples(0, {}).get(), first.get());
}

TEST(SharedSamples, ManyThreadsMayShareAtOnce) {
    std::vector<std::thread> threads;
    std::vector<SharedSamples> held(8);
    for (std::size_t i = 0; i < held.size(); ++i)
        threads.emplace_back([&held, i] {
            for (int round = 0; round < 200; ++round) {
                held[i].reset();
                held[i] = shareSamples(3, std::vector<float>(64, static_cast<float>(round % 3)));
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    for (const SharedSamples& samples : held)
        EXPECT_EQ(samples.get(), held.front().get());
}

} // namespace
