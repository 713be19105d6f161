// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataError.h"
#include "data/head/MeasuredSet.h"
#include "room/MeasuredBands.h"
#include "room/MeasuredRoom.h"

#include "../data_builder/SyntheticRooms.h"
#include "SyntheticRoom.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

using namespace orvane::kestrum::tools;
using ::testing::HasSubstr;

namespace {

constexpr double mixingMs = 25;

MeasuredRoom measured(const test::SyntheticRoom& room, std::size_t channelCount) {
    const test::TemporaryFolder folder;
    return measureRoom(readImpulseFile(room.write(folder.file("ir.wav"), channelCount)), mixingMs);
}

/// The room's own figures. A tenth for what chance does to a narrow octave of a single response.
TEST(MeasuredRooms, TellTheDecayOfEveryOctave) {
    const test::SyntheticRoom room;
    const MeasuredRoom found = measured(room, 2);
    for (std::size_t octave = 0; octave < room.t60.size(); ++octave) {
        EXPECT_TRUE(found.told[octave]);
        EXPECT_NEAR(found.t60[octave], room.t60[octave], 0.1 * room.t60[octave]) << roomOctavesHz[octave];
    }
}

/// Analytic: an even decay of energy 1 has exp(-13.8 t / T) of it left; the direct sound has its own. The first 2.5 ms of the
/// reverb count as direct. 1 dB for octaves that decay unevenly.
TEST(MeasuredRooms, TellClarityAndDirectSound) {
    test::SyntheticRoom room;
    room.t60.fill(0.4);
    const MeasuredRoom found = measured(room, 1);
    const auto left = [](double seconds) { return std::exp(-6 * std::log(10.0) * seconds / 0.4); };
    const double direct = std::pow(10.0, room.directOverRestDb / 10);
    EXPECT_NEAR(found.directOverRestDb, 10 * std::log10((direct + 1 - left(0.0025)) / left(0.0025)), 0.5);
    EXPECT_NEAR(found.clarity50Db, 10 * std::log10((direct + 1 - left(0.05)) / left(0.05)), 1);
}

/// Noise 50 dB under the reverb's start is met after 50/60 of T60.
TEST(MeasuredRooms, FindWhereTheirDecayMeetsTheNoise) {
    test::SyntheticRoom room;
    room.t60.fill(0.4);
    room.noiseDb = -50;
    room.seconds = 2;
    const MeasuredRoom found = measured(room, 2);
    for (const std::size_t octave : {2U, 3U, 4U, 5U}) {
        EXPECT_NEAR(found.kneeSeconds[octave], 0.4 * 50 / 60, 0.06) << roomOctavesHz[octave];
        EXPECT_NEAR(found.t60[octave], 0.4, 0.04) << roomOctavesHz[octave];
    }
}

TEST(MeasuredRooms, ThatDrownInNoiseAreRefused) {
    test::SyntheticRoom room;
    room.noiseDb = -25;
    try {
        measured(room, 1);
        FAIL() << "nothing refused";
    } catch (const DataError& error) {
        EXPECT_THAT(error.what(), HasSubstr("before its noise or its end, and 35 dB are needed"));
    }
}

TEST(MeasuredRooms, ThatAreNoRoomsAreRefused) {
    ImpulseFile click;
    click.sampleRate = 48000;
    click.ears = {Samples(48000), Samples(48000)};
    click.ears[0][0] = click.ears[1][0] = 1;
    try {
        measureRoom(click, mixingMs);
        FAIL() << "nothing refused";
    } catch (const DataError& error) {
        EXPECT_THAT(error.what(), HasSubstr("as no room does"));
    }
}

/// Two channels with 0.6 in common: in the mean exactly, in one band as far as its degrees of freedom tell.
TEST(MeasuredRooms, TellTheCoherenceOfTwoChannels) {
    test::SyntheticRoom room;
    room.coherence = 0.6;
    const MeasuredRoom found = measured(room, 2);
    double sum = 0;
    std::size_t count = 0;
    for (const CoherenceBand& band : found.coherence)
        if (band.centreHz > 400 && band.centreHz < 8000) {
            EXPECT_NEAR(band.zeroLag, 0.6, 4 / std::sqrt(2 * band.freedom)) << band.centreHz;
            sum += band.zeroLag;
            ++count;
        }
    EXPECT_NEAR(sum / static_cast<double>(count), 0.6, 0.05);
}

/// Bands of a response for the Scene "Living Room", whose place is 0.46 s long.
class BandsOfMeasuredRooms : public ::testing::Test {
protected:
    static constexpr int livingRoom = 19;

    static RoomDescription descriptionFor(const MeasuredRoom& room) {
        RoomDescription description = roomDescription(livingRoom);
        description.t60 = room.t60;
        return description;
    }
    static MeasuredBands bandsOf(const MeasuredRoom& room, bool headCoherence = false) {
        return measuredBands(room, descriptionFor(room), head(), headCoherence);
    }
    static const DiffuseHead& head() {
        static const DiffuseHead made(test::syntheticResponses());
        return made;
    }
    static double power(const ReverbBand& band, double fromSeconds, double toSeconds) {
        double sum = 0;
        const auto from = static_cast<std::size_t>(fromSeconds * 48000);
        const auto to = static_cast<std::size_t>(toSeconds * 48000);
        for (const Samples& ear : band.samples)
            for (std::size_t frame = from; frame < to; ++frame)
                sum += ear[frame] * ear[frame];
        return 10 * std::log10(sum / static_cast<double>(to - from));
    }
};

/// What does not decay is as strong late as early: 3 dB for chance in a narrow band.
TEST_F(BandsOfMeasuredRooms, DoNotDecayAnyMore) {
    const MeasuredBands made = bandsOf(measured({}, 2));
    for (const ReverbBand& band : made.bands)
        if (band.centreHz > 300 && band.centreHz < 10000) {
            EXPECT_NEAR(power(band, 0.25, 0.4), power(band, 0.03, 0.18), 3) << band.centreHz;
        }
}

/// The file's noise, met after a third of a second, would grow by 60 dB per T60 were it taken for decay.
TEST_F(BandsOfMeasuredRooms, GoOnEvenlyBehindTheirNoise) {
    test::SyntheticRoom room;
    room.t60.fill(0.4);
    room.noiseDb = -45;
    room.seconds = 2;
    const MeasuredBands made = bandsOf(measured(room, 1));
    for (const ReverbBand& band : made.bands)
        if (band.centreHz > 300 && band.centreHz < 10000) {
            EXPECT_NEAR(power(band, 0.35, 0.46), power(band, 0.05, 0.2), 3) << band.centreHz;
        }
}

TEST_F(BandsOfMeasuredRooms, AreTheSameEveryTime) {
    const MeasuredRoom room = measured({}, 1);
    const MeasuredBands one = bandsOf(room), other = bandsOf(room);
    for (std::size_t band = 0; band < one.bands.size(); ++band)
        EXPECT_EQ(one.bands[band].samples, other.bands[band].samples);
}

TEST_F(BandsOfMeasuredRooms, OfMonoGetTheCoherenceOfTheHead) {
    const MeasuredBands made = bandsOf(measured({}, 1));
    for (std::size_t band = 0; band < made.bands.size(); ++band) {
        EXPECT_FALSE(made.bands[band].keepsCoherence);
        EXPECT_DOUBLE_EQ(made.coherence[band].zeroLag, head().coherence()[band].zeroLag);
    }
    EXPECT_TRUE(made.boundedHz.empty());
}

/// Channels that have nothing in common agree with a head in the treble and not in the bass.
TEST_F(BandsOfMeasuredRooms, KeepTheirOwnCoherenceWhereAHeadCouldHaveIt) {
    const MeasuredBands made = bandsOf(measured({}, 2));
    std::size_t keptCount = 0;
    for (std::size_t band = 0; band < made.bands.size(); ++band) {
        const double off = made.coherence[band].zeroLag - head().coherence()[band].zeroLag;
        EXPECT_LE(std::abs(off), coherenceBound + 1e-12) << made.bands[band].centreHz;
        keptCount += made.bands[band].keepsCoherence ? 1U : 0U;
    }
    EXPECT_GT(keptCount, 5u);
    EXPECT_FALSE(made.bands.front().keepsCoherence);
    EXPECT_EQ(made.boundedHz.front(), made.bands.front().centreHz);
}

TEST_F(BandsOfMeasuredRooms, GetTheCoherenceOfTheHeadWhereThatIsAsked) {
    const MeasuredBands made = bandsOf(measured({}, 2), true);
    for (const ReverbBand& band : made.bands)
        EXPECT_FALSE(band.keepsCoherence);
    EXPECT_TRUE(made.boundedHz.empty());
}

} // namespace
