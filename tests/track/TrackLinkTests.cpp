// SPDX-License-Identifier: GPL-3.0-or-later
// Who may have the machine's one link, and what becomes of the instances that follow somebody else's.
#include "WholeProgram.h"

#include "headlink/Segment.h"
#include "headlink/TrackStatus.h"
#include "ipc/OrvaneParameterFactory.h"
#include "support/CommandOutput.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <unistd.h>

namespace {

using orvane::kestrum::headlink::readStatus;
using ::test::becomesTrue;
using ::test::Listener;
using ::test::TrackProgram;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;

using TheOneLink = ::test::WholeProgram;

TEST_F(TheOneLink, RefusesASecondOneByNamingTheFirst) {
    TrackProgram first({"--demo"});
    ASSERT_TRUE(first.says("Source: demo."));
    ASSERT_TRUE(becomesTrue([] {
        const auto status = readStatus(TrackProgram::folder() / "orvane-kestrum" / "track.json");
        return status && status->source == "demo" && status->active;
    }));
    const Listener listener;
    TrackProgram second({"--demo"});
    EXPECT_EQ(second.finish(), 1);
    EXPECT_THAT(second.output(),
                ContainsRegex("kestrum: Another kestrum track drives the link already, process " +
                              std::to_string(first.id()) +
                              " \\(demo, last packet [0-9]+ s ago\\): end it first"));
    EXPECT_TRUE(listener.active()); // nothing lost
    EXPECT_TRUE(Listener().connected());
}

TEST_F(TheOneLink, TakesTheLinkOverFromOneThatWasKilledAndFreesItsInstances) {
    std::optional<Listener> loadedBefore;
    {
        TrackProgram killed({"--demo"});
        loadedBefore.emplace();
        ASSERT_TRUE(becomesTrue([&] { return loadedBefore->active(); }));
    }
    EXPECT_TRUE(loadedBefore->active()); // nobody could clear it
    TrackProgram next({"--demo"});
    EXPECT_THAT(next.output(), HasSubstr("The last tracker was ended by force"));
    EXPECT_THAT(next.output(), HasSubstr("Instances that followed the link before have their dial back"));
    EXPECT_FALSE(loadedBefore->active());
    const Listener listener;
    EXPECT_TRUE(becomesTrue([&] { return listener.active(); }));
    next.signal(SIGTERM);
    EXPECT_EQ(next.finish(), 0);
}

TEST_F(TheOneLink, LeavesTheLinkToAnotherMakersTrackerUnlessToldOtherwise) {
    const auto server = OrvaneIPC::OrvaneParameterFactory().createServer();
    server->getHeadRotationServer()->setActive(true);
    TrackProgram refused({"--demo"});
    EXPECT_EQ(refused.finish(), 1);
    EXPECT_THAT(refused.output(),
                HasSubstr("stands still: another tracker drives it, or has crashed. End it, or take "
                          "the link from it with --take-over."));
    const Listener listener;
    EXPECT_TRUE(listener.active());
    TrackProgram taking({"--demo", "--take-over"});
    EXPECT_THAT(taking.output(), HasSubstr("The link is up."));
    EXPECT_FALSE(listener.active()); // it follows no one any more
}

TEST_F(TheOneLink, LeavesTheLinkToOneThatWasStartedWithAnotherRuntimeFolder) {
    TrackProgram first({"--demo"});
    ASSERT_TRUE(first.says("Source: demo."));
    std::filesystem::remove_all(TrackProgram::folder() / "orvane-kestrum"); // as if it lay elsewhere
    TrackProgram second({"--demo"});
    EXPECT_EQ(second.finish(), 1);
    EXPECT_THAT(second.output(), HasSubstr("of another user or of another XDG_RUNTIME_DIR: end it first"));
    EXPECT_TRUE(Listener().active());
}

// Who opens a segment of zeros waits until it is finished, which is for ever.
TEST_F(TheOneLink, ClearsAwayASegmentThatWasNeverFinished) {
    std::ofstream("/dev/shm/OrvaneSharedMemory") << std::string(65536, '\0');
    TrackProgram program({"--demo"});
    EXPECT_THAT(program.output(), HasSubstr("The link is up."));
    const Listener listener;
    EXPECT_TRUE(becomesTrue([&] { return listener.active(); }));
}

// In a mount namespace of its own, so that the machine's shared memory is not touched.
TEST_F(TheOneLink, SaysThatSharedMemoryIsFullAndLeavesNothingThere) {
    const std::string inside = "unshare --user --map-root-user --mount sh -c ";
    if (std::system((inside + "'mount -t tmpfs -o size=32k none /dev/shm' 2>/dev/null").c_str()) != 0)
        GTEST_SKIP() << "This system allows no mount namespaces.";
    std::filesystem::create_directories(TrackProgram::folder());
    const std::string output =
        ::test::outputOf(inside +
                         "'mount -t tmpfs -o size=32k none /dev/shm; "
                         "export XDG_RUNTIME_DIR=" +
                         TrackProgram::folder().string() +
                         "; \"" KESTRUM_PROGRAM "\" track --demo 2>&1; echo status $?; ls /dev/shm'");
    EXPECT_EQ(output,
              "kestrum: The link cannot be made, since /dev/shm is full: make room there.\nstatus 1\n");
}

TEST(Segments, AreMissingWithoutAServerAndWholeWithOne) {
    namespace headlink = orvane::kestrum::headlink;
    const ::test::CleanLink clean;
    const auto look = [] { return headlink::lookAtSegment("OrvaneSharedMemory", getuid()); };
    EXPECT_EQ(look().kind, headlink::SegmentState::Kind::missing);
    const auto server = OrvaneIPC::OrvaneParameterFactory().createServer();
    EXPECT_EQ(look().kind, headlink::SegmentState::Kind::whole);
    EXPECT_FALSE(look().active);
    EXPECT_FALSE(look().held);
    server->getHeadRotationServer()->setActive(true);
    const headlink::SegmentMark mark("OrvaneSharedMemory");
    const headlink::SegmentState state = look();
    EXPECT_TRUE(state.active);
    EXPECT_TRUE(state.held);
    EXPECT_FALSE(state.locked);
    const Listener listener;
    headlink::switchOff("OrvaneSharedMemory", state);
    EXPECT_FALSE(listener.active());
}

} // namespace
