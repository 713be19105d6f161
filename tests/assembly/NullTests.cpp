// SPDX-License-Identifier: GPL-3.0-or-later
#include "assembly/Product.h"
#include "assembly/ReferenceRenderer.h"
#include "support/NoiseHead.h"
#include "support/ReverbFiles.h"
#include "support/Signals.h"
#include "support/WaveFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using test::Channels;
using test::Signal;

constexpr std::uint64_t blockSize = 512;
constexpr std::size_t leadIn = 4096;           // samples of silence: fades end and smoothed gains settle
constexpr std::size_t playing = 9000;          // samples
constexpr std::size_t heardFrames = 36 * 1024; // behind the lead-in
constexpr std::size_t ringing = 6000;          // until the low filters have rung out, by far

/// 5.1 as listed: left, right, centre, low frequency, left and right surround.
constexpr std::size_t channelCount = 6;
constexpr std::size_t lowFrequencyChannel = 3;
constexpr double azimuths[channelCount]{-30, 30, 0, 0, -110, 110};

/// A response as long as any room's, with a frame of noise in every sixteenth place: the reference, which
/// convolves directly, then needs a sixteenth of the time.
Signal sparseReverb() {
    constexpr std::size_t frames = 130000;
    const Signal noise = test::noise(3 * frames, test::Seed{54});
    Signal response(2 * frames);
    for (std::size_t i = 0; i < frames; ++i) {
        if (noise[3 * i] > 1.0f / 8.0f - 1.0f)
            continue;
        const float level = std::exp(-3.0f * static_cast<float>(i) / 24000.0f);
        response[2 * i] = noise[3 * i + 1] * level;
        response[2 * i + 1] = noise[3 * i + 2] * level;
    }
    return response;
}

/// Something like music: reddish noise that pulses, with a tone of its own in every channel.
Channels programme(double sampleRate) {
    Channels channels(channelCount, std::vector<float>(leadIn + heardFrames + blockSize));
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const Signal white = test::noise(playing, test::Seed{100 + static_cast<std::uint32_t>(channel)});
        double red = 0;
        for (std::size_t i = 0; i < playing; ++i) {
            red = 0.95 * red + 0.2 * static_cast<double>(white[i]);
            const double seconds = static_cast<double>(i) / sampleRate;
            const double tone =
                std::sin(2.0 * std::numbers::pi * 110.0 * static_cast<double>(channel + 1) * seconds);
            const double pulse = 0.6 + 0.4 * std::cos(2.0 * std::numbers::pi * 40.0 * seconds);
            channels[channel][leadIn + i] =
                static_cast<float>(pulse * (0.3 * red + 0.05 * static_cast<double>(white[i]) + 0.1 * tone));
        }
    }
    return channels;
}

/// The engine's output from the textbook operations, without its latency.
test::reference::Ears expectedOf(const test::reference::Renderer& renderer, const Channels& channels,
                                 const Signal& reverbFile) {
    namespace reference = test::reference;
    const double rate = renderer.sampleRate;
    const reference::Coefficients kind = renderer.coefficients;
    reference::Ears sum{std::vector<double>(heardFrames), std::vector<double>(heardFrames)};
    std::vector<double> all(playing + ringing);
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const auto first = channels[channel].begin() + leadIn;
        std::vector<double> signal(first, first + playing);
        if (channel == lowFrequencyChannel) {
            signal.resize(playing + ringing);
            signal = reference::filtered(signal, reference::lowPass(80, 1.0, rate, kind));
            for (double& sample : signal)
                sample *= std::sqrt(10.0);
        }
        const reference::Ears response = renderer.loudspeaker({azimuths[channel], 0, 1.5});
        for (std::size_t ear = 0; ear < 2; ++ear)
            reference::addConvolved(sum[ear], signal, response[ear]);
        for (std::size_t i = 0; i < signal.size(); ++i)
            all[i] += signal[i];
    }
    if (renderer.scene.scene.reverbOn) {
        const double q = reference::Renderer::q;
        all = reference::filtered(all, reference::lowPass(renderer.scene.reverbLowPass(), q, rate, kind));
        all = reference::filtered(all, reference::highPass(renderer.scene.reverbHighPass(), q, rate, kind));
        const reference::Ears late = renderer.lateResponse(reverbFile);
        for (std::size_t ear = 0; ear < 2; ++ear)
            reference::addConvolved(sum[ear], all, late[ear]);
    }
    reference::filter(sum, reference::lowShelfCut(340, 2.7, rate, kind));
    reference::scale(sum, renderer.scene.masterGain() * reference::fromDecibels(-9.4));
    return sum;
}

class WholeChain : public ::testing::TestWithParam<std::tuple<const char*, double>> {};

/// Null test: all of a 5.1 bus through the assembled engine, less the reference, both ears together. With the filters' coefficients
/// as the renderer keeps them, what is left is the rounding of 32-bit signals and filter states. With exact ones
/// the rounding of the lowest filters' coefficients is heard as well: the low-frequency channel's at 80 Hz, and
/// a high pass at 45 Hz at the input of the Stadium's reverb.
TEST_P(WholeChain, CancelsWithTheTextbookOperations) {
    const auto [scene, sampleRate] = GetParam();
    test::NoiseHead head(sampleRate == 48000.0 ? 139 : 128);
    const test::TemporaryFolder folder;
    const Signal reverb = sparseReverb();
    for (const char* const name : {"OVNdata510.dat", "OVNdata511.dat"})
        test::writeBytes(folder.file(name), test::reverbContainer(reverb));

    test::Product product(&head, folder.path());
    product.chooseLayout("5.1 ITU");
    product.chooseScene(scene);
    product.prepare(blockSize, sampleRate);
    const Channels input = programme(sampleRate);
    const Channels output = product.render(input, blockSize);

    using test::reference::Coefficients;
    for (const auto& [kind, limit] :
         {std::pair{Coefficients::in32Bits, -80.0}, std::pair{Coefficients::exact, -60.0}}) {
        const test::reference::Renderer renderer{
            head, test::reference::SceneValues(test::reference::sceneNamed(scene)), sampleRate, blockSize,
            kind};
        const test::reference::Ears expected = expectedOf(renderer, input, reverb);
        std::vector<float> heard;
        std::vector<double> reference;
        for (std::size_t ear = 0; ear < 2; ++ear) {
            EXPECT_GT(test::peak(output[ear]), 0.05f);
            heard.insert(heard.end(), output[ear].begin() + leadIn + blockSize, output[ear].end());
            reference.insert(reference.end(), expected[ear].begin(), expected[ear].end());
        }
        const double residue = test::reference::residueDb(heard, reference);
        EXPECT_LT(residue, limit);
        RecordProperty(kind == Coefficients::exact ? "ResidueExactDb" : "ResidueDb", std::to_string(residue));
    }
}
INSTANTIATE_TEST_SUITE_P(ScenesAndRates, WholeChain,
                         ::testing::Combine(::testing::Values("Mix Room", "Stadium", "Car", "Live Venue"),
                                            ::testing::Values(44100.0, 48000.0)),
                         [](const auto& chain) {
                             std::string name = std::get<0>(chain.param);
                             std::erase(name, ' ');
                             return name + std::to_string(static_cast<int>(std::get<1>(chain.param)));
                         });

} // namespace
