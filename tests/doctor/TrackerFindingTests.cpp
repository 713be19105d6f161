// SPDX-License-Identifier: GPL-3.0-or-later
// Segments as trackers leave them, sound and damaged, each by a name that no plug-in looks for.
#include "MadeUpSystem.h"

#include "headlink/Segment.h"
#include "ipc/HeadRotation.h"

#include <boost/interprocess/managed_shared_memory.hpp>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <optional>
#include <random>

using namespace orvane::kestrum::doctor;
using ::testing::AnyOf;
using ::testing::ElementsAre;

namespace interprocess = boost::interprocess;
namespace fs = std::filesystem;

namespace {

using Record = OrvaneIPC::HeadRotation::Data;

class TrackerFindings : public test::MadeUpSystem {
protected:
    void TearDown() override {
        interprocess::shared_memory_object::remove(places.segment.c_str());
        if (statusFile >= 0)
            close(statusFile);
    }

    Record& startServer() {
        segment.emplace(interprocess::create_only, places.segment.c_str(), OrvaneIPC::segmentSize);
        return *segment->construct<Record>(OrvaneIPC::headRotationName)();
    }

    fs::path file() const { return fs::path("/dev/shm") / places.segment; }

    /// The status of a tracker that lives as long as the test, or has just died.
    void tellStatus(bool alive, double secondsAgo) {
        const auto now = std::chrono::system_clock::now().time_since_epoch();
        const double packet = std::chrono::duration<double>(now).count() - secondsAgo;
        const fs::path path = places.runtime / "track.json";
        write(path, R"({"pid": 4711, "source": "osc udp 8000 /ypr", "started": 1.0, "lastPacket": )" +
                        std::to_string(packet) + R"(, "active": true}      )");
        if (alive) {
            statusFile = open(path.c_str(), O_RDONLY | O_CLOEXEC);
            flock(statusFile, LOCK_EX);
        }
    }

private:
    std::optional<interprocess::managed_shared_memory> segment;
    int statusFile = -1;
};

TEST_F(TrackerFindings, NoSegmentIsANote) {
    EXPECT_THAT(checkTracker(places),
                ElementsAre(test::Found(Verdict::note, "No tracker is running", "kestrum track")));
}

TEST_F(TrackerFindings, ATrackerWhoseSegmentIsGoneIsAFault) {
    tellStatus(true, 0);
    EXPECT_THAT(checkTracker(places),
                ElementsAre(test::Found(Verdict::fault, "its link is gone", "kill 4711")));
}

TEST_F(TrackerFindings, AnInactiveLinkIsANote) {
    startServer();
    EXPECT_THAT(checkTracker(places), ElementsAre(test::Found(Verdict::note, "not active")));
}

TEST_F(TrackerFindings, AForeignTrackersMovementIsSeen) {
    Record& record = startServer();
    record.active = 1;
    EXPECT_THAT(
        checkTracker(places),
        ElementsAre(test::Found(Verdict::good, "No kestrum track of yours, but another tracker drives the "
                                               "link, active and still")));
}

TEST_F(TrackerFindings, ATrackerOfAnotherUserOrRuntimeFolderIsToldFromOneOfAnotherMaker) {
    startServer().active = 1;
    const orvane::kestrum::headlink::SegmentMark mark(places.segment);
    EXPECT_THAT(checkTracker(places),
                ElementsAre(test::Found(Verdict::good, "A kestrum track, but none of yours")));
}

/// Anyone may put a file among the temporary ones.
TEST_F(TrackerFindings, AStatusFileOfSomebodyElseIsNoStatus) {
    if (getuid() != 0)
        GTEST_SKIP() << "Only root can give a file away.";
    startServer();
    tellStatus(true, 0);
    ASSERT_EQ(chown((places.runtime / "track.json").c_str(), 65534, 65534), 0);
    EXPECT_THAT(checkTracker(places), ElementsAre(test::Found(Verdict::note, "not active")));
}

TEST_F(TrackerFindings, ASegmentThatOthersMayWriteToIsTold) {
    startServer().active = 1;
    fs::permissions(file(), fs::perms(0666));
    EXPECT_THAT(checkTracker(places),
                ElementsAre(test::Found(Verdict::fault, "others may write to it", "sudo rm ")));
}

TEST_F(TrackerFindings, AnInstanceWithoutThisSegmentIsNamed) {
    startServer().active = 1;
    write(places.below("/proc/100/comm"), "ardour\n");
    write(places.below("/proc/100/maps"),
          "7f10b0000000-7f10b1000000 r-xp 00000000 08:01 99   /usr/lib/vst3/Orvane KESTRUM.so\n");
    EXPECT_THAT(checkTracker(places), ElementsAre(test::Found(Verdict::good, "active and still"),
                                                  test::Found(Verdict::warning, "\"ardour\" (process 100)")));
}

TEST_F(TrackerFindings, ASegmentIsSwitchedOffWithoutTakingItsLock) {
    Record& record = startServer();
    record.active = 1;
    record.lock = 1;
    using namespace orvane::kestrum::headlink;
    const SegmentState state = lookAtSegment(places.segment, places.user);
    ASSERT_EQ(state.kind, SegmentState::Kind::whole);
    switchOff(places.segment, state);
    EXPECT_EQ(record.active, 0);
    EXPECT_EQ(record.lock, 1);
    record.active = 1;
    SegmentState older = state;
    ++older.inode;
    switchOff(places.segment, older); // another has taken its place
    EXPECT_EQ(record.active, 1);
}

/// The doctor's child looks while this process writes.
TEST_F(TrackerFindings, ATrackerThatMovesIsSeenMoving) {
    startServer().active = 1;
    const pid_t writer = fork();
    if (writer == 0) {
        interprocess::managed_shared_memory memory(interprocess::open_only, places.segment.c_str());
        volatile float* const angle = &memory.find<Record>(OrvaneIPC::headRotationName).first->rotation[0];
        for (;;)
            *angle = *angle + 1.0F;
    }
    const Findings findings = checkTracker(places);
    kill(writer, SIGKILL);
    waitpid(writer, nullptr, 0);
    EXPECT_THAT(findings, ElementsAre(test::Found(Verdict::good, "active and moving")));
}

TEST_F(TrackerFindings, OurOwnTrackerIsNamedWithSourceAndAge) {
    startServer().active = 1;
    tellStatus(true, 0);
    EXPECT_THAT(checkTracker(places),
                ElementsAre(test::Found(
                    Verdict::good, "kestrum track (process 4711) drives the link from osc udp 8000 /ypr, "
                                   "last packet ")));
}

TEST_F(TrackerFindings, ASilentSenderIsAWarning) {
    startServer();
    tellStatus(true, 60);
    EXPECT_THAT(checkTracker(places),
                ElementsAre(test::Found(Verdict::warning, "fallen silent", "kestrum track --help")));
}

TEST_F(TrackerFindings, ATrackerThatEndedWithoutSwitchingOffIsAWarning) {
    startServer().active = 1;
    tellStatus(false, 60);
    EXPECT_THAT(checkTracker(places),
                ElementsAre(test::Found(Verdict::warning, "ended without switching off", "kestrum track")));
}

TEST_F(TrackerFindings, AStatusFileOfNonsenseIsNoStatus) {
    startServer();
    for (const std::string nonsense :
         {"", "{", "[1, 2]", "\xff\xfe", "{\"pid\": \"x\", \"lastPacket\": {}}"}) {
        write(places.runtime / "track.json", nonsense);
        EXPECT_THAT(checkTracker(places), ElementsAre(test::Found(Verdict::note, "not active"))) << nonsense;
    }
}

TEST_F(TrackerFindings, ALockThatIsNeverReleasedIsAFaultAndIsLeftAsItIs) {
    Record& record = startServer();
    record.lock = 1;
    EXPECT_THAT(checkTracker(places),
                ElementsAre(test::Found(Verdict::fault, "died while it held", "rm /dev/shm/")));
    EXPECT_EQ(record.lock, 1);
}

TEST_F(TrackerFindings, ASegmentOfSomebodyElseIsAFault) {
    startServer();
    fs::permissions(file(), fs::perms(0644));
    places.user = 12345;
    EXPECT_THAT(checkTracker(places),
                ElementsAre(test::Found(Verdict::fault, "may not read and write", "sudo rm ")));
}

TEST_F(TrackerFindings, ASegmentOfAnotherSizeIsAFault) {
    write(file(), "short");
    EXPECT_THAT(checkTracker(places),
                ElementsAre(test::Found(Verdict::fault, "has 5 bytes instead of 65536")));
    fs::remove(file());
}

TEST_F(TrackerFindings, ASegmentWithoutTheRecordIsAFault) {
    const interprocess::managed_shared_memory other(interprocess::create_only, places.segment.c_str(),
                                                    OrvaneIPC::segmentSize);
    EXPECT_THAT(checkTracker(places), ElementsAre(test::Found(Verdict::fault, "holds no head rotation")));
}

/// All zeros say "not initialised yet": who opens it for good waits for ever.
TEST_F(TrackerFindings, ASegmentThatIsNeverReadyIsAFaultAndHoldsNobodyUp) {
    write(file(), std::string(OrvaneIPC::segmentSize, '\0'));
    EXPECT_THAT(checkTracker(places), ElementsAre(test::Found(Verdict::fault, "is damaged")));
    fs::remove(file());
}

/// Property: whatever bytes a segment holds, the doctor answers in one sentence, and changes none of them.
TEST_F(TrackerFindings, ASegmentOfRandomBytesIsAFaultAndIsLeftAsItIs) {
    startServer();
    std::mt19937 random(1); // NOLINT(*-msc51-cpp): the same bytes every time
    std::string bytes(OrvaneIPC::segmentSize, '\0');
    {
        std::ifstream stream(file(), std::ios::binary);
        stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    for (std::size_t at = 16; at < bytes.size(); ++at) // behind the mark that says "initialised"
        bytes[at] = static_cast<char>(random());
    std::ofstream(file(), std::ios::binary) << bytes;
    EXPECT_THAT(checkTracker(places), ElementsAre(AnyOf(test::Found(Verdict::fault, "is damaged"),
                                                        test::Found(Verdict::fault, "holds no"))));
    std::ifstream stream(file(), std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), bytes);
}

} // namespace
