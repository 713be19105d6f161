// SPDX-License-Identifier: GPL-3.0-or-later
#include "headlink/ChildProcess.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

using namespace orvane::kestrum::headlink;

namespace {

using End = ChildResult::End;
constexpr std::chrono::seconds plenty{60};

TEST(ChildProcess, HandsBackWhatTheWorkReturns) {
    const ChildResult result = inChildProcess([] { return std::string(100000, 'x'); }, plenty);
    EXPECT_EQ(result.end, End::answered);
    EXPECT_EQ(result.text, std::string(100000, 'x')); // more than a pipe holds
}

TEST(ChildProcess, HandsBackTheMessageOfAnException) {
    const ChildResult result =
        inChildProcess([]() -> std::string { throw std::runtime_error("no such thing"); }, plenty);
    EXPECT_EQ(result.end, End::refused);
    EXPECT_EQ(result.text, "no such thing");
}

TEST(ChildProcess, SurvivesACrash) {
    const ChildResult result = inChildProcess(
        [] {
            raise(SIGKILL);
            return std::string("never");
        },
        plenty);
    EXPECT_EQ(result.end, End::crashed);
}

TEST(ChildProcess, EndsWorkThatNeverEnds) {
    const ChildResult result = inChildProcess(
        []() -> std::string {
            for (;;)
                pause();
        },
        std::chrono::milliseconds(50));
    EXPECT_EQ(result.end, End::tooLate);
}

} // namespace
