// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataCommands.h"
#include "data/head/MeasuredSet.h"
#include "data/head/ResponseSet.h"
#include "data/measures/SceneProbe.h"
#include "data/rooms/ReverbCommand.h"
#include "data/rooms/RoomTargets.h"
#include "data/sets/FolderCheck.h"
#include "parameters/core/Scene.h"

#include "SyntheticHead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <string>

using namespace orvane::kestrum::tools;
using ::testing::HasSubstr;

namespace {

std::string bytesOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// The measured head that ships and all rooms for it, made once, and every Scene rendered once through the plug-in's engine.
class ShippedRooms : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        folder = std::make_unique<test::TemporaryFolder>();
        std::ostringstream ignored;
        runHrir({defaultSofaFile, folder->path(), {}, false}, ignored);
        runReverb({folder->path(), false}, said);
        const SceneProbe probe(folder->path());
        for (const RoomTarget& target : roomTargets())
            rendered[target.scene] = probe.responses(target.scene);
    }
    static void TearDownTestSuite() {
        folder.reset();
        rendered.clear();
    }

    static constexpr double rate = 48000;
    static std::unique_ptr<test::TemporaryFolder> folder;
    static std::ostringstream said;
    static std::map<std::string_view, SceneResponses> rendered;
};
std::unique_ptr<test::TemporaryFolder> ShippedRooms::folder;
std::ostringstream ShippedRooms::said;
std::map<std::string_view, SceneResponses> ShippedRooms::rendered;

TEST_F(ShippedRooms, DecayAsTheirScenesAreTo) {
    for (const RoomTarget& target : roomTargets()) {
        const OctaveDecays decays = octaveDecayTimes(rendered[target.scene].reverb, rate);
        const double middle = midDecaySeconds(decays);
        EXPECT_NEAR(middle, target.decaySeconds, decayTolerance * target.decaySeconds) << target.scene;
        for (const DecayShape& shape : target.decayShapes()) {
            const auto octave = std::ranges::find(roomOctavesHz, shape.centreHz) - roomOctavesHz.begin();
            const double ratio = decays[static_cast<std::size_t>(octave)].seconds / middle;
            EXPECT_GE(ratio, shape.least) << target.scene << " at " << shape.centreHz;
            EXPECT_LE(ratio, shape.most) << target.scene << " at " << shape.centreHz;
        }
    }
}

/// Where a clarity and a level of the direct sound contradict each other the clarity holds; what is left to the direct
/// sound then is within 1.5 dB as well.
TEST_F(ShippedRooms, HaveTheClarityAndTheDirectSoundOfTheirScenes) {
    for (const RoomTarget& target : roomTargets()) {
        const SceneResponses& scene = rendered[target.scene];
        EXPECT_NEAR(clarityDb(scene.full, rate, 0.05), target.clarity50Db, clarityToleranceDb)
            << target.scene;
        EXPECT_NEAR(directToRestDb(scene.direct, scene.rest()), target.directToRestDb, 1.5) << target.scene;
    }
}

TEST_F(ShippedRooms, HaveTheCoherenceOfTheHeadsDiffuseField) {
    const ResponseSet head = readResponseSet(responseFiles[1], folder->path());
    const auto field = diffuseFieldCoherence(head.responses, gridWeights(), rate);
    for (const RoomTarget& target : roomTargets()) {
        const auto bands = lateCoherence(rendered[target.scene].reverb, rate, target.fullDensitySeconds);
        for (std::size_t band = 0; band < bands.size() && bands[band].centreHz < 12000; ++band)
            EXPECT_NEAR(bands[band].zeroLag, field[band].zeroLag,
                        bands[band].centreHz < coherenceSplitHz ? coherenceToleranceLow
                                                                : coherenceToleranceHigh)
                << target.scene << " at " << bands[band].centreHz << " Hz";
    }
}

/// Within a window of the mixing time: 1 for Gaussian noise, from which single windows of 20 ms stray by a tenth.
TEST_F(ShippedRooms, AreFullyDenseByTheirMixingTime) {
    for (const RoomTarget& target : roomTargets()) {
        const EarResponses& reverb = rendered[target.scene].reverb;
        double mean = 0;
        for (const Samples& ear : reverb) {
            const auto density = echoDensity(ear, rate, target.decaySeconds).values;
            for (std::size_t step = 0; step < 20; ++step)
                mean += density[static_cast<std::size_t>(target.fullDensitySeconds * 1000) + step] / 40;
        }
        EXPECT_NEAR(mean, 1, 0.12) << target.scene;
    }
}

/// The peaks of the file that the levels were sought on: 6 dB either way, the van's 18 dB lower.
TEST_F(ShippedRooms, HaveTheirPeaksWhereTheCalibrationMayPutThem) {
    constexpr double roundingDb = 1e-4;
    for (const ReverbEntry& entry : readReverbSet(reverbFiles[1], folder->path()).entries) {
        double peak = 0;
        for (const Samples& ear : entry.ears)
            for (const double sample : ear)
                peak = std::max(peak, std::abs(sample));
        const bool van = entry.room == 25;
        EXPECT_GE(20 * std::log10(peak), (van ? -24 : -6) - roundingDb) << entry.room;
        EXPECT_LE(20 * std::log10(peak), (van ? -12 : 6) + roundingDb) << entry.room;
    }
}

/// Property: one room is one room at 44.1 kHz too; both rates hold all that is heard.
TEST_F(ShippedRooms, MeasureAlikeAt44100Hz) {
    const SceneProbe probe(folder->path(), {.sampleRate = 44100});
    for (const std::string_view name : {"Mix Room", "Kitchen", "Club"}) {
        const SceneResponses other = probe.responses(name);
        const SceneResponses& scene = rendered[name];
        EXPECT_NEAR(clarityDb(other.full, 44100, 0.05), clarityDb(scene.full, rate, 0.05), 0.3) << name;
        EXPECT_NEAR(directToRestDb(other.direct, other.rest()), directToRestDb(scene.direct, scene.rest()),
                    0.3)
            << name;
        EXPECT_NEAR(midDecaySeconds(octaveDecayTimes(other.reverb, 44100)),
                    midDecaySeconds(octaveDecayTimes(scene.reverb, rate)), 0.005)
            << name;
    }
}

/// Their responses are shorter there than the engine plays; that of a longer room is heard.
TEST_F(ShippedRooms, OfCarAndVanAreSilentAt24000Hz) {
    const SceneProbe probe(folder->path(), {.sampleRate = 24000});
    const auto sounds = [&probe](std::string_view scene) {
        const SceneResponses parts = probe.responses(scene);
        return std::ranges::any_of(parts.reverb, [](const Samples& ear) {
            return std::ranges::any_of(ear, [](double sample) { return sample != 0; });
        });
    };
    EXPECT_FALSE(sounds("Car"));
    EXPECT_FALSE(sounds("Van"));
    EXPECT_TRUE(sounds("Kitchen"));
}

TEST_F(ShippedRooms, PassTheCheckAndAreToldAbout) {
    for (const FileVerdict& verdict : checkDataFolder(folder->path()))
        EXPECT_TRUE(verdict.sound) << verdict.name << ": " << verdict.finding;
    EXPECT_THAT(said.str(), HasSubstr("Room 46 of 46"));
    EXPECT_THAT(said.str(), HasSubstr("Living Room"));
    const auto entries = std::distance(std::filesystem::directory_iterator(folder->path()), {});
    EXPECT_EQ(entries, 7); // three files each and about.json, and nothing that was only made on the way
}

/// Null test, equal bits, however the rooms are shared out over the cores.
TEST_F(ShippedRooms, AreTheSameBytesEveryTime) {
    const test::TemporaryFolder again;
    for (const std::string file : {"OVNdata121.dat", "about.json"})
        std::filesystem::copy_file(folder->file(file), again.file(file));
    std::ostringstream ignored;
    runReverb({again.path(), false}, ignored);
    for (const ReverbFile& file : reverbFiles)
        EXPECT_TRUE(bytesOf(folder->file(file.name)) == bytesOf(again.file(file.name))) << file.name;
    EXPECT_EQ(bytesOf(folder->file("about.json")), bytesOf(again.file("about.json")));
}

} // namespace
