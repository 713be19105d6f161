// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/UpdateChecker.h"
#include "parameters/ParameterSet.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using orvane::ParameterSet;
using orvane::UpdateChecker;

constexpr bool watched = true;
constexpr bool unwatched = false;

TEST(UpdateChecker, WithoutAWatchedSourceTheAnswerIsAlwaysYes) {
    ParameterSet parameters;
    UpdateChecker checker(&parameters, unwatched, unwatched);
    EXPECT_TRUE(checker.needsUpdate());
    EXPECT_TRUE(checker.needsUpdate());
    UpdateChecker roomOnly(&parameters, unwatched, watched);
    EXPECT_TRUE(roomOnly.needsUpdate());
    EXPECT_TRUE(roomOnly.needsUpdate());
}

TEST(UpdateChecker, AWatchedSourceThatStandsStillIsReportedOnce) {
    ParameterSet parameters;
    UpdateChecker checker(&parameters, watched, unwatched);
    EXPECT_TRUE(checker.needsUpdate());
    EXPECT_FALSE(checker.needsUpdate());
}

TEST(UpdateChecker, AMoveInsideOneWholeDegreeIsNoChange) {
    ParameterSet parameters;
    parameters.setAzimuth(10.2f, false);
    UpdateChecker checker(&parameters, watched, unwatched);
    checker.needsUpdate();
    parameters.setAzimuth(10.9f, false);
    EXPECT_FALSE(checker.needsUpdate());
    parameters.setAzimuth(11.0f, false);
    EXPECT_TRUE(checker.needsUpdate());
    EXPECT_FALSE(checker.needsUpdate());
}

TEST(UpdateChecker, EachWatchedValueOfTheSourceCounts) {
    ParameterSet parameters;
    UpdateChecker checker(&parameters, watched, unwatched);
    checker.needsUpdate();
    parameters.setDirectGainDb(-3.0f, false);
    EXPECT_TRUE(checker.needsUpdate());
    parameters.setReflectionGainDb(-3.0f, false);
    EXPECT_TRUE(checker.needsUpdate());
    parameters.setReflectionLowPassFrequency(4000.0f, false);
    EXPECT_TRUE(checker.needsUpdate());
    parameters.setSpatialValue4(1.0f, false);
    EXPECT_TRUE(checker.needsUpdate());
    parameters.setElevation(12.0f, false);
    EXPECT_TRUE(checker.needsUpdate());
    parameters.setDistance(3.25f, false);
    EXPECT_TRUE(checker.needsUpdate());
    EXPECT_FALSE(checker.needsUpdate());
}

TEST(UpdateChecker, ANotANumberMakesEveryCallReportAChange) {
    ParameterSet parameters;
    parameters.setReflectionGainDb(std::numeric_limits<float>::quiet_NaN(), false);
    UpdateChecker checker(&parameters, watched, unwatched);
    EXPECT_TRUE(checker.needsUpdate());
    EXPECT_TRUE(checker.needsUpdate());
    EXPECT_TRUE(checker.needsUpdate());
}

TEST(UpdateChecker, AWatchedRoomReportsTheFirstLookAndEveryMovedWall) {
    ParameterSet parameters;
    UpdateChecker checker(&parameters, watched, watched);
    EXPECT_TRUE(checker.needsUpdate());
    EXPECT_FALSE(checker.needsUpdate());
    parameters.setCeilingDistance(9.0f, false);
    EXPECT_TRUE(checker.needsUpdate());
    parameters.setFloorDistance(1.0f, false);
    EXPECT_TRUE(checker.needsUpdate());
    parameters.setLeftDistance(1.0f, false);
    EXPECT_TRUE(checker.needsUpdate());
    EXPECT_FALSE(checker.needsUpdate());
}

TEST(UpdateChecker, WallsDoNotCountWhereOnlyTheSourceIsWatched) {
    ParameterSet parameters;
    UpdateChecker checker(&parameters, watched, unwatched);
    checker.needsUpdate();
    parameters.setCeilingDistance(9.0f, false);
    EXPECT_FALSE(checker.needsUpdate());
}

} // namespace
