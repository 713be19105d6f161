// SPDX-License-Identifier: GPL-3.0-or-later
// The kernel's tables of mappings as a real machine shows them.
#include "MadeUpSystem.h"

using namespace orvane::kestrum::doctor;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

constexpr ino_t present = 4242;

class InstanceFindings : public test::MadeUpSystem {
protected:
    void run(int process, const std::string& program, const std::string& maps) const {
        const auto folder = places.below("/proc") / std::to_string(process);
        write(folder / "comm", program + "\n");
        write(folder / "maps", maps);
    }
    std::string segmentLine(ino_t inode, const std::string& mark = "") const {
        return "7f10a0000000-7f10a0010000 rw-s 00000000 00:1a " + std::to_string(inode) +
               "                       /dev/shm/" + places.segment + mark + "\n";
    }

    const std::string plugin = "7f10b0000000-7f10b1000000 r-xp 00000000 08:01 99   "
                               "/usr/lib/vst3/Orvane KESTRUM.vst3/Contents/x86_64-linux/Orvane KESTRUM.so\n";
    const std::string heap = "55d0c0000000-55d0c0021000 rw-p 00000000 00:00 0   [heap]\n";
};

TEST_F(InstanceFindings, APluginLoadedBeforeTheTrackerIsNamedWithItsProgram) {
    run(100, "ardour", heap + plugin);
    EXPECT_THAT(
        checkInstances(places, present),
        ElementsAre(test::Found(Verdict::warning, "\"ardour\" (process 100) has loaded the plug-in before",
                                "# in \"ardour\", remove the plug-in and insert it again")));
}

TEST_F(InstanceFindings, APluginOfAnOlderTrackersSegmentIsNamedToo) {
    run(100, "qtractor", plugin + segmentLine(17, " (deleted)"));
    EXPECT_THAT(checkInstances(places, present), ElementsAre(test::Found(Verdict::warning, "\"qtractor\"")));
    run(100, "qtractor", plugin + segmentLine(17));
    EXPECT_THAT(checkInstances(places, present), ElementsAre(test::Found(Verdict::warning, "\"qtractor\"")));
}

TEST_F(InstanceFindings, ThoseThatFollowAndProgramsWithoutThePluginAreNotNamed) {
    run(100, "ardour", plugin + heap + segmentLine(present));
    run(101, "kestrum", heap + segmentLine(present));
    run(102, "bash", heap);
    write(places.below("/proc/self/maps"), plugin); // no process of its own
    write(places.below("/proc/103/comm"), "closed\n");
    EXPECT_THAT(checkInstances(places, present), IsEmpty());
}

} // namespace
