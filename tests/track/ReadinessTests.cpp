// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/Readiness.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>

#include <unistd.h>

namespace {

using namespace orvane::kestrum::track;

/// Two ends of a pipe.
class Pipe {
public:
    Pipe() { EXPECT_EQ(pipe(ends.data()), 0); }
    ~Pipe() {
        close(ends[0]);
        close(ends[1]);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int reading() const { return ends[0]; }
    void fill() const { EXPECT_EQ(write(ends[1], "x", 1), 1); }
    void empty() const {
        char letter = 0;
        EXPECT_EQ(read(ends[0], &letter, 1), 1);
    }

private:
    std::array<int, 2> ends{};
};

TEST(Readinesses, TellWhichDescriptorsHaveSomethingToRead) {
    const Pipe full, empty;
    full.fill();
    Readiness readiness;
    EXPECT_FALSE(readiness.has(full.reading())) << "before the first wait";
    readiness.wait(std::array{empty.reading(), full.reading()}, std::chrono::hours(1));
    EXPECT_TRUE(readiness.has(full.reading()));
    EXPECT_FALSE(readiness.has(empty.reading()));
    EXPECT_FALSE(readiness.has(-1)) << "no descriptor";
}

TEST(Readinesses, ForgetWhatWasReadyBefore) {
    const Pipe pipe;
    pipe.fill();
    Readiness readiness;
    readiness.wait(std::array{pipe.reading()}, {});
    ASSERT_TRUE(readiness.has(pipe.reading()));
    pipe.empty();
    readiness.wait(std::array{pipe.reading()}, {});
    EXPECT_FALSE(readiness.has(pipe.reading()));
}

TEST(Readinesses, WaitNoLongerThanAskedAndNotAtAllForTheMomentThatIsOver) {
    const Pipe pipe;
    Readiness readiness;
    const Instant before = Clock::now();
    readiness.wait(std::array{pipe.reading()}, std::chrono::milliseconds(-5));
    readiness.wait(std::array{pipe.reading()}, std::chrono::milliseconds(20));
    EXPECT_GE(Clock::now() - before, std::chrono::milliseconds(20));
    EXPECT_FALSE(readiness.has(pipe.reading()));
}

} // namespace
