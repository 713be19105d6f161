// SPDX-License-Identifier: GPL-3.0-or-later
// Errors that the system gives while the data files are opened and read, each call of a sound run failing in turn. They are
// injected between the program and the C library, which this program therefore loads behind the injector.
#include "Playing.h"

#include "support/ScratchFolder.h"
#include "support/WatchedProcess.h"

#include <fiu-control.h>
#include <fiu.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

using test::Verdict;
using How = test::WatchedEnd::How;

/// Starts this program again with the injector before the C library.
class Injector : public ::testing::Environment {
public:
    void SetUp() override {
        if (std::getenv("LD_PRELOAD") != nullptr)
            return;
        std::ifstream stream("/proc/self/cmdline", std::ios::binary);
        std::string line{std::istreambuf_iterator<char>(stream), {}};
        std::vector<char*> arguments;
        for (std::size_t place = 0; place < line.size(); place = line.find('\0', place) + 1)
            arguments.push_back(line.data() + place);
        arguments.push_back(nullptr);
        setenv("LD_PRELOAD", KESTRUM_INJECTOR, 1);
        execv("/proc/self/exe", arguments.data());
        FAIL() << "this program cannot start itself";
    }
};
[[maybe_unused]] const auto* const injector = ::testing::AddGlobalTestEnvironment(new Injector);

std::atomic<bool> counting{false};
std::atomic<int> calls{0};
std::atomic<int> failingCall{-1};

/// Asked by the injector at every call.
int failsNow(const char* /*name*/, int* /*failure*/, void** /*details*/, unsigned* /*flags*/) {
    return counting && calls++ == failingCall ? 1 : 0;
}

/// From here on the call of that number fails; none for -1.
void failAt(const char* point, int call, int error) {
    fiu_enable_external(point, 1, reinterpret_cast<void*>(static_cast<std::intptr_t>(error)), 0, failsNow);
    calls = 0;
    failingCall = call;
    counting = true;
}

struct Point {
    const char* name;
    int error;
};

class ReadErrors : public ::testing::TestWithParam<Point> {
protected:
    ReadErrors() : files(scratch.path) { files.mend(); }

    /// How often a sound run comes to the point.
    int callsOf(const std::function<Verdict(int)>& run) {
        const auto end = test::watch([&] {
            const Verdict verdict = run(-1);
            return verdict == test::playedThroughout ? calls.load() : 200 + static_cast<int>(verdict);
        });
        EXPECT_EQ(end.how, How::returned);
        EXPECT_GT(end.value, 0) << "nothing is injected";
        EXPECT_LT(end.value, 200);
        return end.value;
    }

    void expectEachRefused(const std::function<Verdict(int)>& run) {
        const int count = callsOf(run);
        for (int call = 0; call < count; ++call) {
            const auto end = test::watch([&] { return static_cast<int>(run(call)); });
            EXPECT_EQ(end.how, How::returned) << "call " << call;
            EXPECT_EQ(end.value, test::refusedAndRecovered) << "call " << call;
        }
        std::cout << "figure: " << count << " calls of " << GetParam().name
                  << ", each failing once: all refused\n";
    }

    test::ScratchFolder scratch;
    test::DataFiles files;
};

TEST_P(ReadErrors, AtTheFirstBuildMuteAndFlag) {
    expectEachRefused([&](int call) {
        test::PlayingInstance instance(files.path());
        failAt(GetParam().name, call, GetParam().error);
        return test::firstBuild(instance, [] { counting = false; });
    });
}

TEST_P(ReadErrors, AtARebuildLeaveTheOldEnginePlaying) {
    expectEachRefused([&](int call) {
        test::PlayingInstance instance(files.path());
        return test::rebuildOver(instance, [&] { failAt(GetParam().name, call, GetParam().error); });
    });
}
INSTANTIATE_TEST_SUITE_P(Calls, ReadErrors,
                         ::testing::Values(Point{"posix/io/rw/read", EIO},
                                           Point{"posix/stdio/oc/fopen", EMFILE}));

/// Fewer bytes than asked for are no error: the rest comes with the next call.
TEST(ShortReads, AreNoFaults) {
    const test::ScratchFolder scratch;
    const test::DataFiles files(scratch.path);
    files.mend();
    const auto end = test::watch([&] {
        test::PlayingInstance instance(files.path());
        fiu_enable("posix/io/rw/read/reduce", 1, nullptr, 0);
        return static_cast<int>(test::firstBuild(instance, [] {}));
    });
    EXPECT_EQ(end.how, How::returned);
    EXPECT_EQ(end.value, test::playedThroughout);
}

/// That the tests of errors can fail: one of a call that is never made is no refusal.
TEST(ReadErrorsBeyondTheLastCall, AreNoFaults) {
    const test::ScratchFolder scratch;
    const test::DataFiles files(scratch.path);
    files.mend();
    const auto end = test::watch([&] {
        test::PlayingInstance instance(files.path());
        failAt("posix/io/rw/read", 100000, EIO);
        return static_cast<int>(test::firstBuild(instance, [] {}));
    });
    EXPECT_EQ(end.value, test::playedThroughout);
}

} // namespace
