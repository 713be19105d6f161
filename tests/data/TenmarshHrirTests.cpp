// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/TenmarshHrir.h"

#include "base/SampleBuffer.h"
#include "data/DataFileExceptions.h"
#include "data/TenmarshHrirReader.h"
#include "support/RealtimeScope.h"
#include "support/WaveFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <numbers>
#include <thread>

namespace {

using orvane::SampleBuffer;
using orvane::TenmarshHrir;
using ::testing::Each;

constexpr std::uint64_t responseCount = 2522;

/// Sample `frame` of an ear (0 left) of a response in the numbered set: one more than its place in the file,
/// so every sample is another whole number that a float holds exactly.
float numbered(std::uint64_t response, std::uint64_t frame, std::uint64_t ear, std::uint64_t nativeLength) {
    return static_cast<float>(1 + (response * nativeLength + frame) * 2 + ear);
}

std::vector<float> numberedSet(std::uint64_t nativeLength) {
    std::vector<float> samples(responseCount * nativeLength * 2);
    for (std::size_t index = 0; index < samples.size(); ++index)
        samples[index] = static_cast<float>(index + 1);
    return samples;
}

/// Number of the response in the file for a direction of the grid, by counting groups rather than walking
/// them: group k is k steps of 5 degrees to the left of azimuth 0; the poles are responses 0 and 36.
std::uint64_t responseOf(int azimuthDegrees, int elevationDegrees) {
    if (elevationDegrees == -90)
        return 0;
    if (elevationDegrees == 90)
        return 36;
    const int group = ((360 - azimuthDegrees) % 360) / 5;
    const int row = (elevationDegrees + 90) / 5;
    return static_cast<std::uint64_t>(group == 0 ? row : 36 + (group - 1) * 35 + row);
}

/// Counts what the store asks for and hands on to the real reader.
class CountingReader final : public orvane::IHrirReader {
public:
    explicit CountingReader(int* reads) : reads(reads) {}
    void read(const orvane::IIrFile& file, std::vector<float>& samples) override {
        ++*reads;
        reader.read(file, samples);
    }

private:
    int* reads;
    orvane::TenmarshHrirReader reader;
};

class HrirStore : public ::testing::Test {
protected:
    void SetUp() override {
        write("OVNdata120.dat", 128);
        write("OVNdata121.dat", 139);
        write("OVNdata122.dat", 70);
    }

    void write(const std::string& name, std::uint64_t nativeLength) {
        test::writeBytes(folder.file(name), test::waveBytes({}, numberedSet(nativeLength)));
    }

    SampleBuffer response(int azimuth, int elevation, bool simple = false) const {
        SampleBuffer out(2, store.length());
        store.getResponse(out, azimuth, elevation, simple);
        return out;
    }

    /// The response of the numbered set that the store hands out, by its first left sample.
    std::uint64_t responseNumber(int azimuth, int elevation, std::uint64_t nativeLength) const {
        const auto place = static_cast<std::uint64_t>(response(azimuth, elevation).channelPointers[0][0]) - 1;
        EXPECT_EQ(place % (2 * nativeLength), 0u);
        return place / (2 * nativeLength);
    }

    test::TemporaryFolder folder;
    int reads = 0;
    TenmarshHrir store{std::make_unique<CountingReader>(&reads)};
};

std::vector<float> contents(const SampleBuffer& buffer, std::uint64_t channel) {
    return {buffer.channel(channel).begin(), buffer.channel(channel).end()};
}

void expectEqual(const SampleBuffer& a, const SampleBuffer& b) {
    EXPECT_EQ(contents(a, 0), contents(b, 0));
    EXPECT_EQ(contents(a, 1), contents(b, 1));
}

TEST_F(HrirStore, IsEmptyBeforeTheFirstLoadAndThenLeavesBuffersAlone) {
    EXPECT_EQ(store.length(), 0u);
    EXPECT_EQ(store.bandLimitFactor(), 1);
    SampleBuffer out(2, 3);
    out.channelPointers[1][2] = 5.0f;
    store.getResponse(out, 0, 0, false);
    EXPECT_EQ(out.channelPointers[1][2], 5.0f);
}

// Expected values: counted places in the file, see responseOf().
TEST_F(HrirStore, LaysTheWholeFileOntoTheGridInItsOrder) {
    store.load(24000, folder.path());
    for (int azimuth = -175; azimuth <= 180; azimuth += 5)
        for (int elevation = -90; elevation <= 90; elevation += 5)
            ASSERT_EQ(responseNumber(azimuth, elevation, 70), responseOf(azimuth, elevation))
                << azimuth << " " << elevation;
}

// Expected values: the order of the file as it is told, by hand.
TEST_F(HrirStore, HasItsFirstGroupsWhereTheFileHasThem) {
    store.load(24000, folder.path());
    EXPECT_EQ(responseNumber(0, -90, 70), 0u);
    EXPECT_EQ(responseNumber(0, -85, 70), 1u);
    EXPECT_EQ(responseNumber(0, 85, 70), 35u);
    EXPECT_EQ(responseNumber(0, 90, 70), 36u);
    EXPECT_EQ(responseNumber(-5, -85, 70), 37u);
    EXPECT_EQ(responseNumber(-175, -85, 70), 37u + 34 * 35);
    EXPECT_EQ(responseNumber(180, -85, 70), 37u + 35 * 35);
    EXPECT_EQ(responseNumber(5, 85, 70), 2521u);
}

TEST_F(HrirStore, GivesTheLeftSamplesToChannel0AndTheRightToChannel1) {
    store.load(44100, folder.path());
    const SampleBuffer out = response(-5, 0);
    const std::uint64_t number = responseOf(-5, 0);
    for (std::uint64_t frame = 0; frame < 128; ++frame) {
        EXPECT_EQ(out.channelPointers[0][frame], numbered(number, frame, 0, 128));
        EXPECT_EQ(out.channelPointers[1][frame], numbered(number, frame, 1, 128));
    }
}

TEST_F(HrirStore, TruncatesADirectionToItsCellWithoutRounding) {
    store.load(24000, folder.path());
    EXPECT_EQ(responseNumber(-1, 0, 70), responseOf(-5, 0));
    EXPECT_EQ(responseNumber(1, 0, 70), responseOf(0, 0));
    EXPECT_EQ(responseNumber(4, 0, 70), responseOf(0, 0));
    EXPECT_EQ(responseNumber(0, -1, 70), responseOf(0, -5));
    EXPECT_EQ(responseNumber(0, 4, 70), responseOf(0, 0));
}

TEST_F(HrirStore, HoldsOneResponseForBothEndsOfTheAzimuth) {
    store.load(24000, folder.path());
    for (int elevation = -90; elevation <= 90; elevation += 5)
        for (const bool simple : {false, true})
            expectEqual(response(-180, elevation, simple), response(180, elevation, simple));
}

TEST_F(HrirStore, ClampsAnglesBeyondTheGrid) {
    store.load(24000, folder.path());
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int most = std::numeric_limits<int>::max();
    expectEqual(response(400, 10), response(180, 10));
    expectEqual(response(most, 10), response(180, 10));
    expectEqual(response(least, 10), response(-180, 10));
    for (int azimuth = -180; azimuth <= 180; azimuth += 45) {
        expectEqual(response(azimuth, -120), response(azimuth, -90));
        expectEqual(response(azimuth, least), response(azimuth, -90));
        expectEqual(response(azimuth, most), response(azimuth, 90));
    }
}

TEST_F(HrirStore, HasOneResponseAtEachPole) {
    store.load(24000, folder.path());
    for (int azimuth = -180; azimuth <= 180; azimuth += 5)
        for (const bool simple : {false, true}) {
            expectEqual(response(azimuth, 90, simple), response(0, 90, simple));
            expectEqual(response(azimuth, -90, simple), response(0, -90, simple));
        }
}

struct RateRow {
    std::int32_t rate;
    std::uint64_t nativeLength;
    std::int32_t factor;
};

class HrirStoreAtRate : public HrirStore, public ::testing::WithParamInterface<RateRow> {};

// Expected values: the table of rates; a stored frame at `factor` times its place and zeros between.
TEST_P(HrirStoreAtRate, SpreadsTheStoredSamplesAndTellsTheFactor) {
    const auto [rate, nativeLength, factor] = GetParam();
    store.load(rate, folder.path());
    const auto step = static_cast<std::uint64_t>(factor);
    EXPECT_EQ(store.bandLimitFactor(), factor);
    ASSERT_EQ(store.length(), nativeLength * step);
    for (const auto& [azimuth, elevation] : {std::pair{0, -90}, {0, 90}, {-90, 0}, {5, 85}}) {
        const SampleBuffer out = response(azimuth, elevation);
        for (std::uint64_t ear = 0; ear < 2; ++ear)
            for (std::uint64_t sample = 0; sample < store.length(); ++sample)
                ASSERT_EQ(out.channelPointers[ear][sample],
                          sample % step != 0
                              ? 0.0f
                              : numbered(responseOf(azimuth, elevation), sample / step, ear, nativeLength));
    }
}
INSTANTIATE_TEST_SUITE_P(AllSeven, HrirStoreAtRate,
                         ::testing::Values(RateRow{24000, 70, 1}, RateRow{44100, 128, 1},
                                           RateRow{48000, 139, 1}, RateRow{88200, 128, 2},
                                           RateRow{96000, 139, 2}, RateRow{176400, 128, 4},
                                           RateRow{192000, 139, 4}));

/// Places of the only two samples that are not 0.
std::pair<std::size_t, std::size_t> taps(const SampleBuffer& out) {
    std::pair<std::size_t, std::size_t> result;
    for (std::uint64_t ear = 0; ear < 2; ++ear) {
        const auto samples = contents(out, ear);
        EXPECT_EQ(std::count(samples.begin(), samples.end(), 0.0f),
                  static_cast<std::ptrdiff_t>(samples.size() - 1));
        const auto place =
            std::find_if(samples.begin(), samples.end(), [](float value) { return value != 0; });
        (ear == 0 ? result.first : result.second) = static_cast<std::size_t>(place - samples.begin());
    }
    return result;
}

TEST_F(HrirStore, TheSyntheticResponseInFrontIsEqualAtBothEars) {
    store.load(44100, folder.path());
    const SampleBuffer at128 = response(0, 0, true);
    EXPECT_EQ(taps(at128), std::pair(std::size_t{32}, std::size_t{32}));
    EXPECT_FLOAT_EQ(at128.channelPointers[0][32], 0.895f);
    EXPECT_FLOAT_EQ(at128.channelPointers[1][32], 0.895f);

    store.load(48000, folder.path());
    const SampleBuffer at139 = response(0, 0, true);
    EXPECT_EQ(taps(at139), std::pair(std::size_t{34}, std::size_t{35}));
    EXPECT_FLOAT_EQ(at139.channelPointers[0][34], 0.895f);
    EXPECT_FLOAT_EQ(at139.channelPointers[1][35], 0.895f);
}

TEST_F(HrirStore, TheSyntheticResponseToTheRightIsLateAndWeakAtTheLeftEar) {
    store.load(44100, folder.path());
    const SampleBuffer out = response(90, 0, true);
    EXPECT_EQ(taps(out), std::pair(std::size_t{64}, std::size_t{0}));
    EXPECT_FLOAT_EQ(out.channelPointers[0][64], 0.4f);
    EXPECT_FLOAT_EQ(out.channelPointers[1][0], 1.39f);
}

// Slow reference: the formulas in double precision. A tap may fall to either side where the exact value is
// whole.
TEST_F(HrirStore, TheSyntheticSetFollowsItsFormulasAroundTheCircleAtEveryElevation) {
    store.load(48000, folder.path());
    for (int azimuth = -175; azimuth <= 180; azimuth += 5) {
        const double side = std::sin(azimuth * std::numbers::pi / 180.0) + 1.0;
        const double leftTap = std::trunc(69.5 * side * 0.5 + 1e-5);
        const double rightTap = std::trunc(69.5 - leftTap);
        const SampleBuffer out = response(azimuth, 0, true);
        EXPECT_EQ(taps(out), std::pair(static_cast<std::size_t>(leftTap), static_cast<std::size_t>(rightTap)))
            << azimuth;
        const auto place = taps(out);
        EXPECT_NEAR(out.channelPointers[0][place.first], (2.0 - side) * 0.495 + 0.4, 1e-6); // float rounding
        EXPECT_NEAR(out.channelPointers[1][place.second], side * 0.495 + 0.4, 1e-6);
        for (int elevation = -85; elevation <= 85; elevation += 5)
            expectEqual(response(azimuth, elevation, true), out);
    }
}

TEST_F(HrirStore, ReadsTheFileOnceForLoadsOfTheSameRate) {
    store.load(48000, folder.path());
    store.load(48000, folder.path());
    store.load(48000, "/no/such/folder");
    EXPECT_EQ(reads, 1);
}

TEST_F(HrirStore, ARateThatIsNotSupportedLeavesTheLoadedSetAsItWas) {
    store.load(44100, folder.path());
    EXPECT_THROW(store.load(32000, folder.path()), orvane::sampleRateNotSupportedException);
    EXPECT_EQ(store.length(), 128u);
    EXPECT_EQ(responseNumber(-5, 0, 128), responseOf(-5, 0));
    store.load(44100, folder.path());
    EXPECT_EQ(reads, 1);
}

TEST_F(HrirStore, AMissingFolderIsNotFound) {
    EXPECT_THROW(store.load(44100, "/no/such/folder"), orvane::sampleRateFileNotFoundException);
    EXPECT_EQ(store.length(), 0u);
}

TEST_F(HrirStore, AFailedLoadKeepsTheOldRateInServiceAndIsTriedAgain) {
    store.load(96000, folder.path());
    test::writeBytes(folder.file("OVNdata120.dat"), test::waveBytes({}, std::vector<float>(100)));
    EXPECT_THROW(store.load(44100, folder.path()), orvane::wavChunckSizeShortException);
    EXPECT_THROW(store.load(44100, folder.path()), orvane::wavChunckSizeShortException);
    EXPECT_EQ(reads, 3);
    EXPECT_EQ(store.length(), 278u);
    EXPECT_EQ(store.bandLimitFactor(), 2);
    EXPECT_EQ(response(0, -90).channelPointers[0][2], numbered(0, 1, 0, 139));
    write("OVNdata120.dat", 128);
    store.load(44100, folder.path());
    EXPECT_EQ(store.length(), 128u);
    EXPECT_EQ(store.bandLimitFactor(), 1);
}

/// What is no number would never leave a filter again.
TEST_F(HrirStore, ASampleThatIsNoNumberOrBeyondAMillionMakesTheFileUnreadable) {
    constexpr float infinite = std::numeric_limits<float>::infinity();
    for (const std::int32_t rate : {48000, 96000})
        for (const float wrong : {std::numeric_limits<float>::quiet_NaN(), infinite, -infinite, -1.1e6f}) {
            std::vector<float> samples = numberedSet(139);
            samples.back() = wrong;
            test::writeBytes(folder.file("OVNdata121.dat"), test::waveBytes({}, samples));
            EXPECT_THROW(store.load(rate, folder.path()), orvane::wavNotReadableException) << wrong;
            EXPECT_EQ(store.length(), 0u);
        }
    write("OVNdata121.dat", 139);
    store.load(48000, folder.path());
    EXPECT_EQ(store.length(), 139u);
}

TEST_F(HrirStore, ComingBackToARateMeetsTheFolderAsItIsNow) {
    store.load(24000, folder.path());
    store.load(44100, folder.path());
    EXPECT_THROW(store.load(24000, "/no/such/folder"), orvane::sampleRateFileNotFoundException);
    std::vector<float> louder = numberedSet(70);
    louder[0] = 4.0f;
    test::writeBytes(folder.file("OVNdata122.dat"), test::waveBytes({}, louder));
    store.load(24000, folder.path());
    EXPECT_EQ(response(0, -90).channelPointers[0][0], 4.0f);
}

// Renderers keep the length that they were built with, whatever another instance loads.
TEST_F(HrirStore, CopiesNoMoreThanTheBufferHoldsAndNoMoreThanTheResponse) {
    store.load(24000, folder.path());
    SampleBuffer shorter(2, 10);
    store.getResponse(shorter, 0, -90, false);
    EXPECT_EQ(shorter.channelPointers[0][9], numbered(0, 9, 0, 70));
    EXPECT_EQ(shorter.channelPointers[1][0], numbered(0, 0, 1, 70)); // not what lies behind channel 0

    SampleBuffer longer(3, 72);
    for (std::uint64_t channel = 0; channel < 3; ++channel)
        std::fill_n(longer.channelPointers[channel], 72, -7.0f);
    store.getResponse(longer, 0, -90, false);
    EXPECT_EQ(longer.channelPointers[0][69], numbered(0, 69, 0, 70));
    EXPECT_EQ(longer.channelPointers[0][70], -7.0f);
    EXPECT_EQ(longer.channelPointers[1][71], -7.0f);
    EXPECT_THAT(contents(longer, 2), Each(-7.0f));

    SampleBuffer mono(1, 70);
    store.getResponse(mono, 0, -90, false);
    EXPECT_EQ(mono.channelPointers[0][69], numbered(0, 69, 0, 70));
    SampleBuffer nothing;
    store.getResponse(nothing, 0, 0, false);
    EXPECT_EQ(nothing.numSamples, 0u);
}

TEST_F(HrirStore, LookupsNeitherAllocateNorLock) {
    store.load(24000, folder.path());
    SampleBuffer out(2, store.length());
    const test::RealtimeScope scope;
    const std::uint64_t sum = store.length() + static_cast<std::uint64_t>(store.bandLimitFactor());
    for (int azimuth = -180; azimuth <= 180; ++azimuth)
        store.getResponse(out, azimuth, azimuth / 2, azimuth % 2 == 0);
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
    EXPECT_EQ(sum, 71u);
}

/// Fills every sample of a set with one value that tells the rate.
class UniformReader final : public orvane::IHrirReader {
public:
    void read(const orvane::IIrFile& file, std::vector<float>& samples) override {
        samples.assign(2 * file.length() * file.responseCount(), file.length() == 70 ? 1.0f : 2.0f);
    }
};

// Stress, for the thread sanitizer too: a lookup is whole, of one rate, whatever is loaded meanwhile.
TEST(HrirStoreUnderLoad, NeverHandsOutAResponseOfTwoRates) {
    TenmarshHrir store(std::make_unique<UniformReader>());
    store.load(24000, "");
    std::atomic<bool> done{false};
    std::atomic<int> torn{0};
    std::atomic<int> lookups{0};
    std::vector<std::thread> readers;
    readers.reserve(3);
    for (int reader = 0; reader < 3; ++reader)
        readers.emplace_back([&] {
            SampleBuffer out(2, 200);
            do {
                out.clear();
                store.getResponse(out, 30, 0, false);
                const float value = out.channelPointers[0][0];
                const std::uint64_t expected = value == 1.0f ? 70 : 128;
                for (std::uint64_t ear = 0; ear < 2; ++ear)
                    for (std::uint64_t sample = 0; sample < 200; ++sample)
                        if (out.channelPointers[ear][sample] != (sample < expected ? value : 0.0f))
                            torn = torn + 1;
                const std::uint64_t length = store.length();
                if (length != 70 && length != 128)
                    torn = torn + 1;
                ++lookups;
            } while (!done);
        });
    for (int load = 0; load < 30; ++load)
        store.load(load % 2 == 0 ? 44100 : 24000, "");
    done = true;
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(torn, 0);
    EXPECT_GE(lookups, 3);
}

TEST(HrirStoreUnderLoad, LoadsFromSeveralThreadsLeaveOneOfTheirRates) {
    TenmarshHrir store(std::make_unique<UniformReader>());
    std::vector<std::thread> loaders;
    for (const std::int32_t rate : {24000, 44100, 24000, 44100})
        loaders.emplace_back([&store, rate] { store.load(rate, ""); });
    for (std::thread& loader : loaders)
        loader.join();
    EXPECT_THAT(store.length(), ::testing::AnyOf(70u, 128u));
}

/// A reader that tells when it dies.
class MortalReader final : public orvane::IHrirReader {
public:
    explicit MortalReader(bool* dead) : dead(dead) {}
    ~MortalReader() override { *dead = true; }
    MortalReader(const MortalReader&) = delete;
    MortalReader& operator=(const MortalReader&) = delete;
    void read(const orvane::IIrFile&, std::vector<float>&) override {}

private:
    bool* dead;
};

TEST(ProcessWideHrir, IsOneStoreThatDiscardsTheReadersOfLaterCalls) {
    orvane::IHrir* const first = orvane::processWideHrir(std::make_unique<UniformReader>());
    bool dead = false;
    EXPECT_EQ(orvane::processWideHrir(std::make_unique<MortalReader>(&dead)), first);
    EXPECT_TRUE(dead);
    first->load(24000, "");
    EXPECT_EQ(first->length(), 70u);
}

} // namespace
