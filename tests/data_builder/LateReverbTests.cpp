// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/MeasuredSet.h"
#include "data/measures/RoomMeasures.h"
#include "data/rooms/LateReverb.h"
#include "data/rooms/ReverbBuilder.h"

#include "SyntheticRooms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <string>
#include <vector>

using namespace orvane::kestrum::tools;

namespace {

/// One head and a few rooms, small and large, made once for all tests: a kitchen, a control room whose decay a Scene
/// shortens, a bedroom, and a hall.
class LateReverbs : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        head = std::make_unique<DiffuseHead>(test::syntheticResponses());
        for (const int room : rooms)
            made[room] = lateReverb(roomDescription(room), *head, heardThrough(roomDescription(room)));
    }
    static void TearDownTestSuite() {
        head.reset();
        made.clear();
    }

    /// As the room's Scene lets it be heard.
    static EarResponses heard(const EarResponses& response, int room) {
        const auto gains = heardThrough(roomDescription(room));
        EarResponses result = response;
        if (!gains.empty())
            for (Samples& ear : result)
                for (std::size_t frame = 0; frame < ear.size(); ++frame)
                    ear[frame] *= gains[frame * gains.size() / ear.size()];
        return result;
    }

    static constexpr std::array rooms{12, 13, 15, 5};
    static std::unique_ptr<DiffuseHead> head;
    static std::map<int, EarResponses> made;
};
std::unique_ptr<DiffuseHead> LateReverbs::head;
std::map<int, EarResponses> LateReverbs::made;

TEST_F(LateReverbs, AreTheSameEveryTimeAndOthersForAnotherSeed) {
    const RoomDescription& room = roomDescription(12);
    EXPECT_EQ(lateReverb(room, *head), made[12]);
    EXPECT_NE(lateReverb(room, *head, {}, reverbSeed + 1), made[12]);
}

TEST_F(LateReverbs, HaveTheLengthOfTheirRoomAndAPeakOfOne) {
    for (const int room : rooms) {
        double peak = 0;
        for (const Samples& ear : made[room]) {
            EXPECT_EQ(ear.size(), frameCountAt(roomDescription(room), masterSampleRate)) << room;
            for (const double sample : ear)
                peak = std::max(peak, std::abs(sample));
        }
        EXPECT_DOUBLE_EQ(peak, 1) << room;
    }
}

/// The description, at every rate: 5 % in each octave band that the rate holds.
TEST_F(LateReverbs, DecayInEveryOctaveAsTheRoomIsToldTo) {
    for (const ReverbFile& file : reverbFiles) {
        std::vector<ReverbEntry> master;
        master.reserve(rooms.size());
        for (const int room : rooms)
            master.push_back({room, made[room]});
        for (const ReverbEntry& entry : reverbSetFor(file, master).entries) {
            const OctaveDecays decays = octaveDecayTimes(heard(entry.ears, entry.room), file.sampleRate);
            for (std::size_t octave = 0; octave < decays.size(); ++octave) {
                const double asked = roomDescription(entry.room).t60[octave];
                EXPECT_NEAR(decays[octave].seconds, asked, 0.05 * asked)
                    << "room " << entry.room << " at " << roomOctavesHz[octave] << " Hz, rate "
                    << file.sampleRate;
            }
        }
    }
}

/// The head's own diffuse field: 0.1 below 400 Hz, 0.15 above, from the mixing time on.
TEST_F(LateReverbs, HaveTheCoherenceOfTheHeadsDiffuseField) {
    for (const int room : rooms) {
        const auto bands =
            lateCoherence(heard(made[room], room), masterSampleRate, roomDescription(room).mixingMs / 1000);
        ASSERT_GT(bands.size(), 20u);
        for (std::size_t band = 0; band < bands.size() && bands[band].centreHz < 12000; ++band)
            EXPECT_NEAR(bands[band].zeroLag, head->coherence()[band].zeroLag,
                        bands[band].centreHz < 400 ? 0.1 : 0.15)
                << "room " << room << " at " << bands[band].centreHz << " Hz";
    }
}

/// Analytic: a field that is equally strong in all bands at the start has the head's own spectrum there, tilted by the
/// brightness; a longer decay brings more energy in proportion. 1.5 dB for what the growth and chance do.
TEST_F(LateReverbs, HaveTheSpectrumOfTheHeadsDiffuseField) {
    for (const int number : rooms) {
        const RoomDescription& room = roomDescription(number);
        const EarResponses response = heard(made[number], number);
        RealTransform transform(powerOfTwoFrom(response[0].size()));
        const HeadField field = head->field(transform.size());
        const std::array<Spectrum, 2> spectra{transform.forward(response[0]), transform.forward(response[1])};
        double reference = 0;
        for (const std::size_t octave : {3u, 1u, 2u, 4u, 5u}) { // 1 kHz first
            const double centre = roomOctavesHz[octave];
            const double bins = static_cast<double>(transform.size()) / masterSampleRate;
            double energy = 0, expected = 0;
            for (auto bin = static_cast<std::size_t>(centre / std::sqrt(2.0) * bins);
                 bin < static_cast<std::size_t>(centre * std::sqrt(2.0) * bins); ++bin)
                for (std::size_t ear = 0; ear < 2; ++ear) {
                    energy += std::norm(spectra[ear][bin]);
                    expected += field.power[ear][bin] * room.t60[octave];
                }
            const double level = 10 * std::log10(energy / expected);
            if (octave == 3)
                reference = level;
            EXPECT_NEAR(level - reference, room.brightnessDbPerOctave * std::log2(centre / 1000), 1.5)
                << number << " at " << centre;
        }
    }
}

/// Abel and Huang: 1 for Gaussian noise. A window of 20 ms holds some thousand samples, hundreds of them independent, so
/// single values scatter by about a tenth; means over 20 ms and both ears do by less.
TEST_F(LateReverbs, AreFullyDenseFromTheMixingTimeOn) {
    for (const int room : rooms) {
        const RoomDescription& description = roomDescription(room);
        std::array<Samples, 2> density;
        for (std::size_t ear = 0; ear < 2; ++ear)
            density[ear] =
                echoDensity(heard(made[room], room)[ear], masterSampleRate, description.t60[3]).values;
        const auto meanAround = [&density](double ms) {
            double sum = 0;
            for (std::size_t step = 0; step < 20; ++step)
                sum += density[0][static_cast<std::size_t>(ms) + step] +
                       density[1][static_cast<std::size_t>(ms) + step];
            return sum / 40;
        };
        EXPECT_LT(density[0][static_cast<std::size_t>(description.onsetMs)], 0.7) << room;
        for (double ms = description.mixingMs; ms < 700 * description.t60[3]; ms += 20)
            EXPECT_NEAR(meanAround(ms), 1, 0.12) << "room " << room << " from " << ms << " ms";
    }
}

/// No flutter and no metallic colour: with its decay undone the response is like nothing that it was before. Correlations
/// of noise of n independent samples scatter by 1 / sqrt(n); five deviations are left to chance.
TEST_F(LateReverbs, DoNotRepeatThemselves) {
    for (const int room : rooms) {
        const RoomDescription& description = roomDescription(room);
        const EarResponses response = heard(made[room], room);
        const auto from = static_cast<std::size_t>(description.mixingMs / 1000 * masterSampleRate);
        const auto count = static_cast<std::size_t>(0.5 * description.t60[3] * masterSampleRate);
        for (const Samples& ear : response) {
            RealTransform transform(powerOfTwoFrom(2 * count));
            Samples flat(count);
            for (std::size_t frame = 0; frame < count; ++frame)
                flat[frame] = ear[from + frame] * std::exp(std::log(1000.0) * static_cast<double>(frame) /
                                                           masterSampleRate / description.t60[3]);
            Spectrum spectrum = transform.forward(flat);
            // Whitened, so that only repetition is left to see and not the spectrum's slope.
            const Samples envelope = smoothed(magnitudesOf(spectrum), 1.0);
            for (std::size_t bin = 0; bin < spectrum.size(); ++bin)
                spectrum[bin] =
                    envelope[bin] > 0 ? std::norm(spectrum[bin]) / (envelope[bin] * envelope[bin]) : 0;
            const Samples correlation = transform.inverse(spectrum);
            const auto firstLag = static_cast<std::size_t>(0.002 * masterSampleRate);
            for (std::size_t lag = firstLag; lag < count; ++lag)
                ASSERT_LT(std::abs(correlation[lag]) / correlation[0],
                          5 / std::sqrt(static_cast<double>(count)))
                    << "room " << room << " after " << static_cast<double>(lag) / 48 << " ms";
        }
    }
}

TEST_F(LateReverbs, AreSilentBeforeTheFirstReflectionAndFadeOutAtTheEnd) {
    for (const int room : rooms)
        for (const Samples& ear : made[room]) {
            const auto silent =
                static_cast<std::size_t>((roomDescription(room).onsetMs - 1) / 1000 * masterSampleRate);
            for (std::size_t frame = 0; frame < silent; ++frame)
                ASSERT_EQ(ear[frame], 0) << room;
            double end = 0;
            for (std::size_t frame = ear.size() - 20; frame < ear.size(); ++frame)
                end = std::max(end, std::abs(ear[frame]));
            EXPECT_LT(end, 1e-6) << room;
        }
}

/// Property: a response of another rate filters as the master does. Their spectra agree as far as both reach.
TEST_F(LateReverbs, SoundAlikeAtEveryRate) {
    const std::vector<ReverbEntry> master{{12, made[12]}};
    const auto bandLevel = [](const EarResponses& response, double rate, double fromHz, double toHz) {
        RealTransform transform(65536);
        double energy = 0;
        const Spectrum spectrum = transform.forward(response[0]);
        const double bins = 65536 / rate;
        const auto end = static_cast<std::size_t>(toHz * bins);
        for (auto bin = static_cast<std::size_t>(fromHz * bins); bin < end; ++bin)
            energy += std::norm(spectrum[bin]) / bins;
        return 10 * std::log10(energy);
    };
    for (const ReverbFile& file : reverbFiles) {
        const EarResponses response = reverbSetFor(file, master).entries[0].ears;
        for (const double centre : {125.0, 500.0, 2000.0, 7000.0})
            EXPECT_NEAR(bandLevel(response, file.sampleRate, 0.8 * centre, 1.25 * centre),
                        bandLevel(made[12], 48000, 0.8 * centre, 1.25 * centre), 0.05)
                << file.sampleRate << " Hz, round " << centre;
    }
}

/// A room with slaps, made once, at a head whose far ear hears a source at the side 15 dB softer than the near one.
class Stadiums : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        head = std::make_unique<DiffuseHead>(test::syntheticResponses(7.5));
        response = lateReverb(room(), *head, heardThrough(room()));
    }
    static void TearDownTestSuite() {
        head.reset();
        response = {};
    }

    static const RoomDescription& room() { return roomDescription(33); }
    static double energyAround(double seconds, std::size_t ear) {
        double energy = 0;
        for (auto frame = static_cast<std::size_t>((seconds - 0.01) * masterSampleRate);
             frame < static_cast<std::size_t>((seconds + 0.01) * masterSampleRate); ++frame)
            energy += response[ear][frame] * response[ear][frame];
        return energy;
    }

    static std::unique_ptr<DiffuseHead> head;
    static EarResponses response;
};
std::unique_ptr<DiffuseHead> Stadiums::head;
EarResponses Stadiums::response;

/// By hand: each slap's middle, sixty milliseconds wide, stands out of what surrounds it by some decibels.
TEST_F(Stadiums, SlapWhenTheyAreToldTo) {
    for (const LateSlap& slap : room().slaps)
        EXPECT_GT(
            energyAround(slap.seconds, leftEar) + energyAround(slap.seconds, rightEar),
            2 * (energyAround(slap.seconds - 0.05, leftEar) + energyAround(slap.seconds - 0.05, rightEar)))
            << slap.seconds;
}

/// Property: a slap from the side is louder at the near ear; the tail beneath it takes some of the head's 15 dB.
TEST_F(Stadiums, SlapFromWhereTheyAreToldTo) {
    int fromTheSide = 0;
    for (const LateSlap& slap : room().slaps) {
        const double rightDb =
            10 * std::log10(energyAround(slap.seconds, rightEar) / energyAround(slap.seconds, leftEar));
        if (slap.azimuthDegrees == 75 || slap.azimuthDegrees == -70) {
            EXPECT_GT(slap.azimuthDegrees > 0 ? rightDb : -rightDb, 5) << slap.azimuthDegrees;
            ++fromTheSide;
        }
    }
    EXPECT_EQ(fromTheSide, 2);
}

/// Behind the last slap, which ends at 0.82 s: 0.1 below 400 Hz, 0.15 above, and what is left to chance in a narrow band.
TEST_F(Stadiums, HaveTheCoherenceOfTheHeadsDiffuseFieldApartFromTheirSlaps) {
    EarResponses heard = response;
    const auto gains = heardThrough(room());
    for (Samples& ear : heard)
        for (std::size_t frame = 0; frame < ear.size() && !gains.empty(); ++frame)
            ear[frame] *= gains[frame * gains.size() / ear.size()];
    const auto bands = lateCoherence(heard, masterSampleRate, 0.85);
    ASSERT_GT(bands.size(), 20u);
    for (std::size_t band = 0; band < bands.size() && bands[band].centreHz < 12000; ++band)
        EXPECT_NEAR(bands[band].zeroLag, head->coherence()[band].zeroLag,
                    std::max(bands[band].centreHz < 400 ? 0.1 : 0.15, 1 / std::sqrt(2 * bands[band].freedom)))
            << bands[band].centreHz << " Hz";
}

} // namespace
