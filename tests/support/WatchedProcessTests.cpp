// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/WatchedProcess.h"

#include <gtest/gtest.h>

#include <csignal>
#include <ctime>
#include <stdexcept>

#include <unistd.h>

namespace {

using How = test::WatchedEnd::How;

TEST(WatchedProcess, TellsWhatItsWorkReturned) {
    const auto end = test::watch([] { return 7; });
    EXPECT_EQ(end.how, How::returned);
    EXPECT_EQ(end.value, 7);
}

TEST(WatchedProcess, TellsAnExceptionFromACrashFromAHang) {
    EXPECT_EQ(test::watch([]() -> int { throw std::runtime_error("no"); }).how, How::threw);
    EXPECT_EQ(test::watch([] { return raise(SIGKILL); }).how, How::crashed);
    const auto hang = []() -> int {
        for (;;)
            pause();
    };
    EXPECT_EQ(test::watch(hang, std::chrono::milliseconds(50)).how, How::hung);
}

TEST(WatchedProcess, CountsWorkButNotWaiting) {
    const auto worked = test::watch([] {
        const std::clock_t start = std::clock();
        while (std::clock() - start < CLOCKS_PER_SEC / 10)
            ;
        return 0;
    });
    EXPECT_GE(worked.cpuTime, std::chrono::milliseconds(100));
    const auto waited = test::watch([] { return usleep(200000); });
    EXPECT_EQ(waited.how, How::returned);
    EXPECT_LT(waited.cpuTime, std::chrono::milliseconds(100));
}

} // namespace
