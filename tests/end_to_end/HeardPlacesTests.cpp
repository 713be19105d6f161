// SPDX-License-Identifier: GPL-3.0-or-later
// The product as its user meets it: the built program, the built bundle, the installed data folder, a file
// in, a file out. The reference is the HRIR set itself, convolved directly in double precision.
#include "RenderedFile.h"

#include "base/SampleBuffer.h"
#include "data/TenmarshHrir.h"
#include "data/TenmarshHrirReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <numbers>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using test::Channels;
using test::kestrum;
using test::readSound;
using test::scratch;
using test::Signal;
using test::Sound;
using test::writeSound;
namespace fs = std::filesystem;

constexpr const char* dataDirectory = "/opt/Tenmarsh/OrvaneVSTPlugin/data";

Signal convolve(const Signal& signal, const Signal& response) {
    Signal result(signal.size() + response.size() - 1);
    for (std::size_t n = 0; n < signal.size(); ++n) {
        if (signal[n] == 0.0)
            continue;
        for (std::size_t k = 0; k < response.size(); ++k)
            result[n + k] += signal[n] * response[k];
    }
    return result;
}

/// Both ears of the set's response for a loudspeaker; azimuth positive to the right.
std::pair<Signal, Signal> headResponse(int sampleRate, float azimuth, float elevation) {
    orvane::TenmarshHrir store(std::make_unique<orvane::TenmarshHrirReader>());
    store.load(sampleRate, dataDirectory);
    orvane::SampleBuffer buffer(2, store.length());
    store.getResponse(buffer, -static_cast<std::int32_t>(azimuth), static_cast<std::int32_t>(elevation),
                      false);
    const auto left = buffer.channel(0);
    const auto right = buffer.channel(1);
    return {Signal(left.begin(), left.end()), Signal(right.begin(), right.end())};
}

/// A second-order section, denominator 1 + a1 z^-1 + a2 z^-2.
struct Section {
    double b0, b1, b2, a1, a2;

    Signal filter(const Signal& in) const {
        Signal out(in.size());
        double z1 = 0;
        double z2 = 0;
        for (std::size_t n = 0; n < in.size(); ++n) {
            out[n] = b0 * in[n] + z1;
            z1 = b1 * in[n] - a1 * out[n] + z2;
            z2 = b2 * in[n] - a2 * out[n];
        }
        return out;
    }
};

/// Butterworth pieces of second order are enough to look at one band of both ears alike.
Signal band(const Signal& signal, double sampleRate, double low, double high) {
    const auto pass = [sampleRate](double frequency, bool highPass) {
        const double k = std::tan(std::numbers::pi * frequency / sampleRate);
        const double norm = 1.0 / (1.0 + std::numbers::sqrt2 * k + k * k);
        const double b0 = highPass ? norm : k * k * norm;
        return Section{b0, highPass ? -2.0 * b0 : 2.0 * b0, b0, 2.0 * (k * k - 1.0) * norm,
                       (1.0 - std::numbers::sqrt2 * k + k * k) * norm};
    };
    return pass(high, false).filter(pass(low, true).filter(signal));
}

/// The bass shelf of the output stage, -2.7 dB at 340 Hz, which weights a voice's low end in both ears alike.
Signal bassShelf(const Signal& signal, double sampleRate) {
    const double k = std::tan(std::numbers::pi * 340.0 / sampleRate);
    const double v = std::pow(10.0, 2.7 / 20.0);
    const double root = std::sqrt(2.0 * v);
    const double norm = 1.0 / (1.0 + root * k + v * k * k);
    return Section{(1.0 + std::numbers::sqrt2 * k + k * k) * norm, 2.0 * (k * k - 1.0) * norm,
                   (1.0 - std::numbers::sqrt2 * k + k * k) * norm, 2.0 * (v * k * k - 1.0) * norm,
                   (1.0 - root * k + v * k * k) * norm}
        .filter(signal);
}

double energy(const Signal& signal) {
    return std::inner_product(signal.begin(), signal.end(), signal.begin(), 0.0);
}

double levelDifferenceDb(const Signal& left, const Signal& right) {
    return 10.0 * std::log10(energy(left) / energy(right));
}

/// How much later the right ear hears it, in microseconds: peak of the cross-correlation from 100 to 1500 Hz,
/// refined by a parabola.
double arrivalDifference(const Signal& left, const Signal& right, double sampleRate) {
    const Signal a = band(left, sampleRate, 100.0, 1500.0);
    const Signal b = band(right, sampleRate, 100.0, 1500.0);
    constexpr std::ptrdiff_t reach = 60;
    std::array<double, 2 * reach + 1> correlation{};
    for (std::ptrdiff_t lag = -reach; lag <= reach; ++lag)
        for (std::ptrdiff_t n = reach; n + reach < static_cast<std::ptrdiff_t>(a.size()); ++n)
            correlation[static_cast<std::size_t>(lag + reach)] +=
                a[static_cast<std::size_t>(n)] * b[static_cast<std::size_t>(n + lag)];
    const auto peak = static_cast<std::size_t>(
        std::max_element(correlation.begin() + 1, correlation.end() - 1) - correlation.begin());
    const double before = correlation[peak - 1];
    const double at = correlation[peak];
    const double after = correlation[peak + 1];
    const double fraction = 0.5 * (before - after) / (before - 2.0 * at + after);
    return (static_cast<double>(peak) - static_cast<double>(reach) + fraction) * 1e6 / sampleRate;
}

struct Place {
    std::size_t channel;
    float azimuth;
    bool lowFrequency = false;
};
constexpr std::array<Place, 6> itu51{{{0, -30}, {1, 30}, {2, 0}, {3, 0, true}, {4, -110}, {5, 110}}};

/// The part of all channels in which one channel of \p input speaks, with some room behind it for the
/// response.
std::pair<std::size_t, std::size_t> spokenPart(const Sound& input, std::size_t channel) {
    const Signal& signal = input.channels[channel];
    const auto loud = [](double sample) { return std::abs(sample) > 1e-4; };
    const auto first = std::find_if(signal.begin(), signal.end(), loud);
    const auto last = std::find_if(signal.rbegin(), signal.rend(), loud).base();
    return {static_cast<std::size_t>(first - signal.begin()),
            std::min(static_cast<std::size_t>(last - signal.begin()) + 200, signal.size())};
}

Signal part(const Signal& signal, std::pair<std::size_t, std::size_t> range) {
    const std::size_t end = std::min(range.second, signal.size());
    return {signal.begin() + static_cast<std::ptrdiff_t>(range.first),
            signal.begin() + static_cast<std::ptrdiff_t>(end)};
}

/// Compares what is heard with what the set says, channel by channel, octave by octave.
void expectHeardFromTheirPlaces(const Sound& input, const Sound& output) {
    const double sampleRate = input.sampleRate;
    for (const Place& place : itu51) {
        SCOPED_TRACE("channel " + std::to_string(place.channel));
        const auto range = spokenPart(input, place.channel);
        ASSERT_LT(range.first, range.second) << "the channel is silent";
        const Signal heardLeft = part(output.channels[0], range);
        const Signal heardRight = part(output.channels[1], range);
        const Signal spoken = bassShelf(part(input.channels[place.channel], range), sampleRate);
        const auto [leftResponse, rightResponse] = headResponse(input.sampleRate, place.azimuth, 0);
        const Signal left = convolve(spoken, leftResponse);
        const Signal right = convolve(spoken, rightResponse);

        const double itd = arrivalDifference(heardLeft, heardRight, sampleRate);
        std::printf("channel %zu at %+4.0f: ITD %+6.0f us", place.channel, static_cast<double>(place.azimuth),
                    itd);
        EXPECT_NEAR(itd, arrivalDifference(left, right, sampleRate), 8.0); // a third of a sample
        if (!place.lowFrequency) {
            for (const double centre : {500.0, 1000.0, 2000.0, 4000.0}) {
                const double low = centre / std::numbers::sqrt2;
                const double high = centre * std::numbers::sqrt2;
                const double ild = levelDifferenceDb(band(heardLeft, sampleRate, low, high),
                                                     band(heardRight, sampleRate, low, high));
                const double expected =
                    levelDifferenceDb(band(left, sampleRate, low, high), band(right, sampleRate, low, high));
                std::printf("  %4.0f Hz %+5.1f dB", centre, ild);
                EXPECT_NEAR(ild, expected, 0.5)
                    << centre; // the voice's weight inside the band, the response's tail ramp
            }
        }
        std::printf("\n");
        if (place.azimuth < 0) {
            EXPECT_GT(itd, 100.0) << "left is left: the left ear is first";
            EXPECT_GT(levelDifferenceDb(heardLeft, heardRight), 1.0);
        } else if (place.azimuth > 0) {
            EXPECT_LT(itd, -100.0);
            EXPECT_LT(levelDifferenceDb(heardLeft, heardRight), -1.0);
        } else {
            EXPECT_NEAR(itd, 0.0, 30.0);
        }
    }
}

TEST(HeardPlaces, EachSpokenChannelNameOfTheDemoComesFromItsLoudspeaker) {
    const fs::path demo = scratch("demo.wav");
    const fs::path heard = scratch("demo_heard.wav");
    ASSERT_EQ(std::system(("\"" KESTRUM_PROGRAM "\" demo \"" + demo.string() + "\"").c_str()), 0);
    ASSERT_EQ(kestrum("render \"" + demo.string() + "\" \"" + heard.string() +
                      "\" --layout \"5.1 ITU\" --scene \"Analytic Dry\" --focus 100"),
              0);
    const Sound input = readSound(demo);
    const Sound output = readSound(heard);
    ASSERT_EQ(output.channels.size(), 2u);
    ASSERT_EQ(output.sampleRate, input.sampleRate);
    expectHeardFromTheirPlaces(input, output);
}

class HeardPlacesAtRate : public ::testing::TestWithParam<int> {};

TEST_P(HeardPlacesAtRate, NoiseInEachChannelComesFromItsLoudspeaker) {
    const int sampleRate = GetParam();
    Sound input{sampleRate, Channels(6, Signal(static_cast<std::size_t>(sampleRate) * 2))};
    std::mt19937 generator(77);
    std::normal_distribution<double> normal(0.0, 0.1);
    for (std::size_t channel = 0; channel < 6; ++channel)
        for (int n = 0; n < sampleRate / 5; ++n)
            input.channels[channel][channel * static_cast<std::size_t>(sampleRate) * 3 / 10 +
                                    static_cast<std::size_t>(n)] = normal(generator);
    const std::string name = "noise_" + std::to_string(sampleRate);
    writeSound(scratch(name + ".wav"), input);
    ASSERT_EQ(kestrum("render \"" + scratch(name + ".wav").string() + "\" \"" +
                      scratch(name + "_heard.wav").string() +
                      "\" --layout \"5.1 ITU\" --scene \"Analytic Dry\" --focus 100"),
              0);
    expectHeardFromTheirPlaces(input, readSound(scratch(name + "_heard.wav")));
}
INSTANTIATE_TEST_SUITE_P(StoredRates, HeardPlacesAtRate, ::testing::Values(44100, 48000));

/// The first channel of the default layout alone is louder and earlier at the left ear.
TEST(HeardPlaces, LeftIsLeft) {
    Sound input{44100, Channels(2, Signal(22050))};
    input.channels[0][4410] = 1.0;
    writeSound(scratch("left.wav"), input);
    ASSERT_EQ(kestrum("render \"" + scratch("left.wav").string() + "\" \"" +
                      scratch("left_heard.wav").string() + "\""),
              0);
    const Sound output = readSound(scratch("left_heard.wav"));
    EXPECT_GT(levelDifferenceDb(output.channels[0], output.channels[1]), 3.0);
    const auto firstArrival = [](const Signal& signal) {
        const double loudest = std::abs(*std::max_element(
            signal.begin(), signal.end(), [](double a, double b) { return std::abs(a) < std::abs(b); }));
        return std::find_if(signal.begin(), signal.end(),
                            [&](double s) { return std::abs(s) > 0.2 * loudest; }) -
               signal.begin();
    };
    EXPECT_LT(firstArrival(output.channels[0]), firstArrival(output.channels[1]));
}

} // namespace
