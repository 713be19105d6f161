// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/RoomReport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

using namespace orvane::kestrum::tools;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

/// A room whose findings are what was wanted of it, until a test changes one.
class RoomVerdicts : public ::testing::Test {
protected:
    RoomVerdicts() {
        room.scene.name = "Living Room";
        room.wanted.fill(0.4);
        room.asked = room.wanted;
        room.target.directToRestDb = 2;
        room.target.clarity50Db = 8;
        findings.measures.directToRestDb = 2;
        findings.measures.clarity50Db = 8;
        for (std::size_t octave = 0; octave < room.asked.size(); ++octave)
            findings.measures.reverbDecays[octave].seconds = room.asked[octave];
        for (const double centre : {250.0, 1000.0}) {
            CoherenceBand band;
            band.centreHz = centre;
            band.zeroLag = 0.2;
            room.coherence.push_back(band);
            findings.coherence.push_back(band);
        }
    }
    std::string missed() const { return findings.missed(room); }

    OwnRoom room;
    RoomFindings findings;
};

TEST_F(RoomVerdicts, AreGoodWhereAllIsAsWanted) { EXPECT_EQ(missed(), ""); }

/// The tolerances of the page: 1 dB, 1.5 dB.
TEST_F(RoomVerdicts, CountTheLevel) {
    for (const double off : {-1.1, 1.1}) {
        findings.measures.directToRestDb = 2 + off;
        EXPECT_EQ(missed(), "direct sound over the rest") << off;
    }
    findings.measures.directToRestDb = 2.9;
    for (const double off : {-1.6, 1.6}) {
        findings.measures.clarity50Db = 8 + off;
        EXPECT_EQ(missed(), "clarity") << off;
    }
    findings.measures.clarity50Db = 9.4;
    EXPECT_EQ(missed(), "");
}

/// Who asks for a level gets that one; the clarity is what it is then.
TEST_F(RoomVerdicts, DoNotCountAClarityThatNobodyAskedFor) {
    room.clarityAsked = false;
    findings.measures.clarity50Db = 20;
    EXPECT_EQ(missed(), "");
    findings.measures.directToRestDb = 5;
    EXPECT_EQ(missed(), "direct sound over the rest");
    std::ostringstream told;
    tellRoom(room, findings, told);
    EXPECT_THAT(told.str(), HasSubstr("C50 +20.0 dB (an even decay at that level: +8.0)"));
}

TEST_F(RoomVerdicts, CountALengthThatTheSceneDoesNotHold) {
    room.wanted[0] = 0.9; // and got what was asked of the Scene
    EXPECT_EQ(missed(), "length");
}

TEST_F(RoomVerdicts, CountDecaysAndCoherences) {
    findings.measures.reverbDecays[3].seconds = 0.45;
    findings.coherence[0].zeroLag = 0.31;
    findings.coherence[1].zeroLag = 0.36;
    EXPECT_EQ(missed(), "T60 at 1000 Hz, coherence below 400 Hz, coherence above 400 Hz");
}

/// A correction weighs the frequencies of direct sound and reverb differently; the level was not set for that.
TEST_F(RoomVerdicts, JudgeTheLevelWithoutTheHeadphones) {
    findings.measures.directToRestDb = 4;
    findings.plainLevel = SceneFigures{};
    findings.plainLevel->directToRestDb = 2;
    findings.plainLevel->clarity50Db = 8;
    EXPECT_EQ(missed(), "");
    std::ostringstream told;
    tellRoom(room, findings, told);
    EXPECT_THAT(told.str(), AllOf(HasSubstr("Direct over the rest: +2.0 dB (wanted +2.0)"),
                                  HasSubstr("with them +4.0 dB and +8.0 dB"), Not(HasSubstr("nan"))));
    findings.plainLevel->directToRestDb = 4;
    EXPECT_EQ(missed(), "direct sound over the rest");
}

} // namespace
