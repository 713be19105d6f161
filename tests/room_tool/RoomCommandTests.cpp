// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/reports/ReportPage.h"
#include "data/rooms/DecaySearch.h"
#include "data/rooms/ReverbBuilder.h"
#include "room/OwnRoom.h"
#include "room/RoomCommand.h"

#include "../data_builder/SyntheticRooms.h"
#include "Refusal.h"
#include "SyntheticRoom.h"

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

using namespace orvane::kestrum::tools;
using test::refusal;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

std::string roomPage() {
    std::ifstream page(std::filesystem::path(KESTRUM_DOCS) / "tools" / "kestrum-room.md");
    return {std::istreambuf_iterator<char>(page), std::istreambuf_iterator<char>()};
}

std::string refusalOfRoom(const RoomRequest& request) {
    static const DiffuseHead head(test::syntheticResponses());
    return refusal([&] { makeOwnRoom(request, head); });
}

RoomRequest livingRoom() {
    RoomRequest request;
    request.scene = "Living Room";
    request.t60 = {0.4};
    request.volume = 60;
    return request;
}

TEST(Documentation, ShowsTheHelpOfRoom) {
    CLI::App program("", "kestrum");
    addRoomCommand(program);
    std::ostringstream help;
    try {
        program.parse("room --help");
    } catch (const CLI::CallForHelp& asked) {
        program.exit(asked, help, help);
    }
    ASSERT_THAT(help.str(), HasSubstr("Usage: kestrum room"));
    EXPECT_THAT(roomPage(), HasSubstr("```text\n" + help.str() + "```"));
}

TEST(RoomScenes, GoByTheirNamesInListAndMenu) {
    EXPECT_EQ(reverbScene("Mix Room").room, 15);
    EXPECT_EQ(reverbScene("mix room a").room, 15);
    EXPECT_EQ(reverbScene("Mix Room").entry, 56u);
    EXPECT_NEAR(reverbScene("Mix Room").lengthSeconds, 27201 / 48000.0, 1e-9);
}

TEST(RoomScenes, KnowWhichOthersPlayTheirRoom) {
    EXPECT_THAT(reverbScene("Cinema").sharedWith, ElementsAre("Home Theater"));
    EXPECT_THAT(reverbScene("Home Theater").sharedWith, ElementsAre("Cinema"));
    EXPECT_THAT(reverbScene("Mix Room Small").sharedWith, IsEmpty()) << "the Analytic Scenes play no reverb";
}

/// Property: no Scene's own curve falls faster than the decay that it is said to hold, or a response would have to grow.
TEST(RoomScenes, HoldTheLongestDecayWithoutAGrowingResponse) {
    for (const std::string name :
         {"Mix Room", "Mix Room Small", "Mix Room Large", "Live Venue", "Stadium", "Acoustic Venue",
          "Club Large", "Club", "Cinema", "Home Theater", "Kitchen"}) {
        const ReverbScene scene = reverbScene(name);
        const auto gains = heardThroughDecay(scene.decayPercent);
        constexpr std::size_t steps = 1000;
        EnergyCourse course{Samples(steps, 1.0), scene.lengthSeconds / steps};
        for (std::size_t step = 0; step < steps && !gains.empty(); ++step)
            course.energies[step] = std::pow(gains[step * gains.size() / steps], 2);
        const double rate = decayRateFor(course, longestDecay(scene));
        EXPECT_GE(rate, 0) << name;
        for (std::size_t step = 0; step < steps; ++step)
            course.energies[step] *= std::exp(-2 * rate * course.stepSeconds * static_cast<double>(step));
        EXPECT_NEAR(reverberationTime(course), longestDecay(scene), 0.02 * longestDecay(scene)) << name;
    }
}

TEST(RoomScenes, WithoutReverbOrUnknownAreRefused) {
    EXPECT_THAT(refusal([] { reverbScene("Analytic Dry"); }),
                AllOf(HasSubstr("has no reverb"), HasSubstr("\"Mix Room\", \"Mix Room Small\"")));
    EXPECT_THAT(refusal([] { reverbScene("Moon"); }), HasSubstr("There is no Scene \"Moon\": name one of"));
}

/// The page's table of places is the plug-in's own.
TEST(Documentation, SaysHowLongADecayEachSceneHolds) {
    const std::string text = roomPage();
    for (const std::string name :
         {"Mix Room", "Mix Room Small", "Mix Room Large", "Live Venue", "Stadium", "Acoustic Venue",
          "Club Large", "Club", "Car", "Van", "Cinema", "Home Theater", "Living Room", "Kitchen"}) {
        const ReverbScene scene = reverbScene(name);
        EXPECT_THAT(text, HasSubstr("| " + name + " | " + fixedText(scene.lengthSeconds, 2) + " | " +
                                    fixedText(longestDecay(scene), 2) + " |"));
    }
}

/// Lists of numbers end where they end: the folder's name may stand behind them.
TEST(RoomCommands, TakeListsInOneWord) {
    for (const std::string arguments :
         {"room --t60 0.6,0.5,0.4,0.4,0.38,0.35,0.3 --walls 2,2,2,2,1,0 /tmp/none --data /none --scene Car",
          "room /tmp/none --data /none --scene Car --walls 2,2,2,2,1,0 --t60 0.3"}) {
        std::ostringstream out;
        CLI::App program("", "kestrum");
        addRoomCommand(program, out);
        EXPECT_THAT(refusal([&] { program.parse(arguments); }), HasSubstr("\"/none\" is no folder"))
            << arguments;
    }
}

TEST(OwnRooms, AreMadeFromFiguresOrFromAResponse) {
    RoomRequest both = livingRoom();
    both.response = "/some.wav";
    EXPECT_THAT(refusalOfRoom(both), HasSubstr("give either --t60 or a response with --ir"));
    RoomRequest neither = livingRoom();
    neither.t60.clear();
    EXPECT_THAT(refusalOfRoom(neither), HasSubstr("give either --t60 or a response with --ir"));
}

TEST(OwnRooms, ThatMakeNoSenseAreRefused) {
    RoomRequest request = livingRoom();
    request.volume.reset();
    EXPECT_THAT(refusalOfRoom(request), HasSubstr("size is missing"));
    request = livingRoom();
    request.volume = 0;
    EXPECT_THAT(refusalOfRoom(request), HasSubstr("A volume of 0 m3"));
    request = livingRoom();
    request.t60 = {-1};
    EXPECT_THAT(refusalOfRoom(request), HasSubstr("A T60 of -1 s is no room's"));
    request = livingRoom();
    request.directOverRestDb = 200;
    EXPECT_THAT(refusalOfRoom(request), HasSubstr("give -60 to 60 dB"));
    request = livingRoom();
    request.directivityDb = -3;
    EXPECT_THAT(refusalOfRoom(request), HasSubstr("give 0 to 20 dB"));
    request = livingRoom();
    request.distance = 0;
    EXPECT_THAT(refusalOfRoom(request), HasSubstr("with --distance"));
}

} // namespace
