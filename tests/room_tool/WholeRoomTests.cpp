// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataError.h"
#include "data/head/MeasuredSet.h"
#include "data/headphones/HeadphoneFold.h"
#include "data/measures/BandFilter.h"
#include "data/measures/SceneProbe.h"
#include "data/reports/ReportPage.h"
#include "data/rooms/ReverbFile.h"
#include "data/sets/About.h"
#include "data/sets/FolderCheck.h"
#include "data/sets/SetStore.h"
#include "room/OwnRoom.h"
#include "room/RoomCommand.h"

#include "FoldedFolder.h"
#include "SyntheticRoom.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>

using namespace orvane::kestrum::tools;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

/// T60 of a response of both ears, from the slope between -5 and -35 dB of the energy that is still to come. Its own few
/// lines, so that the product's measures are not asked about themselves.
double schroederSeconds(const EarResponses& ears) {
    const std::size_t length = ears[0].size();
    Samples left(length + 1);
    for (std::size_t frame = length; frame-- > 0;)
        left[frame] = left[frame + 1] + ears[0][frame] * ears[0][frame] + ears[1][frame] * ears[1][frame];
    const auto timeAt = [&](double levelDb) {
        const double energy = left[0] * std::pow(10.0, levelDb / 10);
        const auto found = std::ranges::find_if(left, [&](double remaining) { return remaining < energy; });
        return static_cast<double>(found - left.begin()) / 48000;
    };
    return 2 * (timeAt(-35) - timeAt(-5));
}

/// Without lag, over all frequencies of a response from a moment on, its decay undone.
double coherenceOf(const EarResponses& ears, double fromSeconds, double toSeconds, double t60) {
    double both = 0, left = 0, right = 0;
    for (auto frame = static_cast<std::size_t>(fromSeconds * 48000);
         frame < static_cast<std::size_t>(toSeconds * 48000); ++frame) {
        const double weight = std::exp(6 * std::log(10.0) * static_cast<double>(frame) / 48000 / t60);
        both += weight * ears[0][frame] * ears[1][frame];
        left += weight * ears[0][frame] * ears[0][frame];
        right += weight * ears[1][frame] * ears[1][frame];
    }
    return both / std::sqrt(left * right);
}

class WholeRooms : public ::testing::Test {
protected:
    RoomRequest request(const std::string& scene) {
        RoomRequest asked;
        asked.data = test::soundFolder();
        asked.out = folder.file("made");
        asked.scene = scene;
        return asked;
    }
    static std::string run(const RoomRequest& asked) {
        std::ostringstream out;
        try {
            runRoom(asked, out);
        } catch (const DataError& error) {
            return std::string("refused: ") + error.what();
        }
        return out.str();
    }
    SceneResponses rendered(const std::string& scene) {
        return SceneProbe(folder.file("made"), {48000, 512, 1.5}).responses(scene);
    }
    static double energy(const EarResponses& ears) {
        double sum = 0;
        for (const Samples& ear : ears)
            for (const double sample : ear)
                sum += sample * sample;
        return sum;
    }

    test::TemporaryFolder folder;
};

/// An even T60 in all bands, heard through the engine as the Scene plays it. 7 %: chance in single bands.
TEST_F(WholeRooms, FromFiguresDecayAsTheyAreToldWhenTheyAreRendered) {
    RoomRequest asked = request("Living Room");
    asked.t60.assign(7, 0.35);
    asked.volume = 60;
    EXPECT_THAT(run(asked), HasSubstr("Wrote "));
    EXPECT_NEAR(schroederSeconds(rendered("Living Room").reverb), 0.35, 0.07 * 0.35);
    const auto verdicts = checkDataFolder(asked.out);
    EXPECT_TRUE(std::ranges::all_of(verdicts, [](const FileVerdict& verdict) { return verdict.sound; }));
}

/// The Scene "Home Theater" shortens its response by a curve of its own, and not that of "Cinema", which plays it too.
TEST_F(WholeRooms, DecayAsToldThroughTheCurveOfTheNamedScene) {
    RoomRequest asked = request("Home Theater");
    asked.t60.assign(7, 0.3);
    asked.volume = 80;
    EXPECT_THAT(run(asked), HasSubstr("the Scene \"Cinema\" plays it too"));
    EXPECT_NEAR(schroederSeconds(rendered("Home Theater").reverb), 0.3, 0.07 * 0.3);
}

/// The level that was asked for, as energies of two renderings. 0.3 dB: levels are sought in steps, and the file is of
/// 32-bit floats.
TEST_F(WholeRooms, HaveTheDirectSoundAtTheLevelThatIsAskedFor) {
    for (const double level : {-3.0, 2.0}) {
        RoomRequest asked = request("Living Room");
        std::filesystem::remove_all(asked.out);
        asked.t60.assign(7, 0.4);
        asked.volume = 40;
        asked.directOverRestDb = level;
        EXPECT_THAT(run(asked), Not(HasSubstr("direct sound over the rest")));
        const SceneResponses parts = rendered("Living Room");
        EXPECT_NEAR(10 * std::log10(energy(parts.direct) / energy(parts.rest())), level, 0.3) << level;
    }
}

/// The Scene's own reflections alone are stronger than 50 dB below the direct sound.
TEST_F(WholeRooms, WhoseLevelIsMissedSaySo) {
    RoomRequest asked = request("Living Room");
    asked.t60 = {0.4};
    asked.volume = 40;
    asked.directOverRestDb = 50;
    EXPECT_THAT(run(asked), AllOf(HasSubstr("not met: "), HasSubstr("direct sound over the rest"),
                                  Not(HasSubstr("all met"))));
}

/// A set of the machine with headphones folded in, and the same one without them.
class WholeRoomsForHeadphones : public WholeRooms {
public:
    WholeRoomsForHeadphones() {
        setenv("KESTRUM_DATA_ROOT", folder.file("root").c_str(), 1);
        setenv("KESTRUM_PACKAGED_SETS", folder.file("none").c_str(), 1);
        std::filesystem::create_directories(folder.file("root/sets"));
        std::filesystem::copy(test::foldedFolder(), folder.file("root/sets/studio-00000001"));
    }
    ~WholeRoomsForHeadphones() override {
        unsetenv("KESTRUM_DATA_ROOT");
        unsetenv("KESTRUM_PACKAGED_SETS");
    }
    WholeRoomsForHeadphones(const WholeRoomsForHeadphones&) = delete;
    WholeRoomsForHeadphones& operator=(const WholeRoomsForHeadphones&) = delete;

protected:
    void addPlainSet() const {
        std::filesystem::copy(test::soundFolder(), folder.file("root/sets/plain-00000002"));
    }
    std::string runOn(const std::string& set, RoomRequest asked) const {
        asked.data = folder.file("root/sets/" + set);
        asked.out = folder.file(set);
        return run(asked);
    }
    ReverbEntry livingRoomOf(const std::string& made) const {
        const ReverbSet set = readReverbSet(reverbFiles[1], folder.file(made));
        return *std::ranges::find(set.entries, 19, &ReverbEntry::room);
    }
    /// The room of the set with headphones has to be that of the plain one, filtered.
    void expectOnlyFiltered(const RoomRequest& asked) const {
        runOn("plain-00000002", asked);
        const std::string told = runOn("studio-00000001", asked);
        ReverbEntry expected = livingRoomOf("plain-00000002");
        foldIntoRoom(expected, readHeadphones(folder.file("studio-00000001/headphones.txt")).curve, 48000);
        const ReverbEntry made = livingRoomOf("studio-00000001");
        double peak = 0;
        double off = 0;
        for (std::size_t ear = 0; ear < 2; ++ear)
            for (std::size_t frame = 0; frame < made.ears[ear].size(); ++frame) {
                peak = std::max(peak, std::abs(made.ears[ear][frame]));
                off = std::max(off, std::abs(made.ears[ear][frame] - expected.ears[ear][frame]));
            }
        EXPECT_LT(off, 1e-5 * peak); // files are of 32-bit floats
        const double peakDb = 20 * std::log10(peak);
        EXPECT_THAT(told, HasSubstr("peak of the stored response " + std::string(peakDb > 0.05 ? "+" : "") +
                                    fixedText(peakDb, 1) + " dB"));
        EXPECT_THAT(told, HasSubstr("Headphones: folded in after the level was set"));
        const auto verdicts = checkDataFolder(folder.file("studio-00000001"));
        EXPECT_TRUE(std::ranges::all_of(verdicts, &FileVerdict::sound));
    }
};

/// Property: trying another correction changes the colour and nothing else.
TEST_F(WholeRoomsForHeadphones, FromFiguresAreThoseWithoutThemFiltered) {
    addPlainSet();
    RoomRequest asked = request("Living Room");
    asked.t60 = {0.4};
    asked.volume = 60;
    expectOnlyFiltered(asked);
}

TEST_F(WholeRoomsForHeadphones, FromAMeasurementAreThoseWithoutThemFiltered) {
    addPlainSet();
    RoomRequest asked = request("Living Room");
    asked.response = test::SyntheticRoom{}.write(folder.file("ir.wav"), 2);
    expectOnlyFiltered(asked);
}

TEST_F(WholeRoomsForHeadphones, AreRefusedWhereTheHeadWithoutThemIsMissing) {
    RoomRequest asked = request("Living Room");
    asked.t60 = {0.4};
    asked.volume = 60;
    EXPECT_THAT(runOn("studio-00000001", asked),
                AllOf(HasSubstr("refused: "), HasSubstr("which no set of this machine holds")));
    EXPECT_FALSE(std::filesystem::exists(folder.file("studio-00000001")));
}

TEST_F(WholeRooms, AreTheSameEveryTime) {
    RoomRequest asked = request("Living Room");
    asked.response = test::SyntheticRoom{}.write(folder.file("ir.wav"), 1);
    const std::string first = run(asked);
    asked.out = folder.file("again");
    EXPECT_NE(first, run(asked)) << "the folder's name is told";
    for (const char* name : {"OVNdata510.dat", "OVNdata511.dat", "OVNdata512.dat", "about.json"})
        EXPECT_EQ(sha256OfFile(folder.path() + "/made/" + name),
                  sha256OfFile(folder.path() + "/again/" + name))
            << name;
}

/// A measured room of even T60 goes in, the same comes out of the engine; its ears have nothing in common in the treble, as a
/// head's have not.
TEST_F(WholeRooms, FromMonoDecayAsTheFileDoesAndAreHeardApart) {
    test::SyntheticRoom room;
    room.t60.fill(0.35);
    RoomRequest asked = request("Living Room");
    asked.response = room.write(folder.file("ir.wav"), 1);
    EXPECT_THAT(run(asked), HasSubstr("mono response"));
    const EarResponses reverb = rendered("Living Room").reverb;
    EXPECT_NEAR(schroederSeconds(reverb), 0.35, 0.08 * 0.35);
    EXPECT_LT(std::abs(coherenceOf(reverb, 0.04, 0.3, 0.35)), 0.35);
}

/// Noise 40 dB under the reverb, which the Scene would play for half a second: the decay goes on below it.
TEST_F(WholeRooms, GoOnDecayingBelowTheNoiseOfTheFile) {
    test::SyntheticRoom room;
    room.t60.fill(0.35);
    room.noiseDb = -45;
    room.seconds = 2;
    RoomRequest asked = request("Living Room");
    asked.response = room.write(folder.file("ir.wav"), 1);
    EXPECT_THAT(run(asked), HasSubstr("from there each band goes on as noise with its own slope"));
    const EarResponses reverb = rendered("Living Room").reverb;
    EXPECT_NEAR(schroederSeconds(reverb), 0.35, 0.08 * 0.35);
    const auto level = [&](double from, double to) {
        double sum = 0;
        for (const Samples& ear : reverb)
            for (auto frame = static_cast<std::size_t>(from * 48000);
                 frame < static_cast<std::size_t>(to * 48000); ++frame)
                sum += ear[frame] * ear[frame];
        return 10 * std::log10(sum);
    };
    EXPECT_NEAR(level(0.3, 0.35) - level(0.1, 0.15), -60 * 0.2 / 0.35, 4);
}

/// Ears with 0.2 in common keep it, since a head may have it; with the head's own they have less.
TEST_F(WholeRooms, FromStereoKeepWhatTheEarsHaveInCommonWithinBounds) {
    test::SyntheticRoom room;
    room.t60.fill(0.35);
    room.coherence = 0.2;
    RoomRequest asked = request("Living Room");
    asked.response = room.write(folder.file("ir.wav"), 2);
    EXPECT_THAT(run(asked), HasSubstr("stereo response"));
    const double kept = coherenceOf(rendered("Living Room").reverb, 0.04, 0.3, 0.35);
    std::filesystem::remove_all(asked.out);
    asked.headCoherence = true;
    run(asked);
    const double head = coherenceOf(rendered("Living Room").reverb, 0.04, 0.3, 0.35);
    EXPECT_NEAR(kept, 0.2, 0.1);
    EXPECT_LT(head, kept - 0.05);
}

TEST_F(WholeRooms, LongerThanTheirPlaceAreShortenedAndSayWhereTheyWouldFit) {
    RoomRequest asked = request("Living Room");
    asked.t60.assign(7, 1.2);
    asked.volume = 2000;
    EXPECT_THAT(run(asked), AllOf(HasSubstr("holds a T60 of 0.60 s"), HasSubstr("\"Live Venue\""),
                                  HasSubstr("not met: length")));
    EXPECT_NEAR(schroederSeconds(rendered("Living Room").reverb), 0.603, 0.1 * 0.603);
}

TEST_F(WholeRooms, JoinTheSetsOfTheMachineByName) {
    setenv("KESTRUM_DATA_ROOT", folder.file("root").c_str(), 1);
    std::filesystem::create_directory(folder.file("root"));
    std::filesystem::create_symlink(test::soundFolder(), folder.file("root/data"));
    RoomRequest asked = request("Living Room");
    asked.data.clear(); // the one that the plug-in reads
    asked.out.clear();
    asked.name = "mine";
    asked.t60 = {0.4};
    asked.volume = 60;
    EXPECT_THAT(run(asked), HasSubstr("kestrum data use mine"));
    const InstalledSet set = SetStore::ofThisMachine().find("mine");
    EXPECT_EQ(ownRooms(set.folder), std::vector<int>{19});
    asked.out = folder.file("made");
    EXPECT_THAT(run(asked), HasSubstr("refused: Say where the room goes"));
    unsetenv("KESTRUM_DATA_ROOT");
}

TEST_F(WholeRooms, ThatAreRefusedLeaveNothingBehind) {
    RoomRequest asked = request("Living Room");
    asked.response = "/none.wav";
    EXPECT_THAT(run(asked), HasSubstr("refused: \"/none.wav\" cannot be read as sound"));
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

/// Asked before the work, and not at its end: no folder comes into being.
TEST_F(WholeRooms, WithAReportNeedGnuplotFirst) {
    RoomRequest asked = request("Living Room");
    asked.t60 = {0.4};
    asked.volume = 60;
    asked.report = folder.file("report");
    const std::string path = std::getenv("PATH");
    setenv("PATH", folder.path().c_str(), 1);
    EXPECT_THAT(run(asked), HasSubstr("refused: The plots cannot be drawn without gnuplot"));
    setenv("PATH", path.c_str(), 1);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(WholeRooms, AreThereEvenWhereTheirReportCannotBeWritten) {
    setenv("KESTRUM_DATA_ROOT", folder.file("root").c_str(), 1);
    RoomRequest asked = request("Living Room");
    asked.out.clear();
    asked.name = "mine";
    asked.t60 = {0.4};
    asked.volume = 60;
    asked.report = "/proc/none";
    EXPECT_THAT(run(asked), HasSubstr("refused: "));
    EXPECT_EQ(ownRooms(SetStore::ofThisMachine().find("mine").folder), std::vector<int>{19});
    unsetenv("KESTRUM_DATA_ROOT");
}

TEST_F(WholeRooms, AreShownOnAPageWithPlots) {
    RoomRequest asked = request("Living Room");
    asked.response = test::SyntheticRoom{}.write(folder.file("ir.wav"), 2);
    asked.report = folder.file("report");
    EXPECT_THAT(run(asked), HasSubstr("Report: "));
    const std::string page = test::readBytes(folder.file("report/index.html"));
    EXPECT_THAT(page, AllOf(HasSubstr("Own room in the Scene Living Room"), HasSubstr("<td>8000 Hz</td>"),
                            HasSubstr("Coherence between the ears"), Not(HasSubstr("nan"))));
    for (const char* plot : {"t60.svg", "decay.svg", "octaves.svg", "coherence.svg"})
        EXPECT_GT(std::filesystem::file_size(folder.file("report/plots/") + plot), 1000u) << plot;
}

} // namespace
