// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/SoundWindows.h"

#include "CheckSupport.h"

#include <nettle/base64.h>

#include <cmath>
#include <numbers>

namespace {

using namespace orvane::kestrum::check;

std::string fromBase64(const std::string& text) {
    base64_decode_ctx context{};
    base64_decode_init(&context);
    std::string bytes(BASE64_DECODE_LENGTH(text.size()), '\0');
    std::size_t size = 0;
    if (base64_decode_update(&context, &size, reinterpret_cast<std::uint8_t*>(bytes.data()), text.size(),
                             text.data()) == 0)
        return {};
    bytes.resize(size);
    return bytes;
}

/// A gliding tone on the left and another on the right; no two moments are alike.
double toneAt(std::size_t ear, double seconds) {
    const double frequencyHz = ear == 0 ? 300 + 40 * seconds : 700 - 30 * seconds;
    return 0.3 * std::sin(2 * std::numbers::pi * frequencyHz * seconds);
}

class Windows : public ::test::FolderTest {
protected:
    static std::vector<std::string> windowsOf(unsigned rate, std::size_t frames, std::size_t pieces) {
        SoundWindows sound(rate);
        std::vector<float> stereo;
        for (std::size_t frame = 0; frame < frames; ++frame) {
            for (const std::size_t ear : {0u, 1u})
                stereo.push_back(static_cast<float>(toneAt(ear, static_cast<double>(frame) / rate)));
            if (stereo.size() >= 2 * pieces || frame + 1 == frames) {
                sound.add(stereo);
                stereo.clear();
            }
        }
        return sound.finish();
    }

    std::vector<std::vector<float>> decoded(const std::string& window) const {
        ::test::writeText(folder / "window.opus", fromBase64(window));
        return ::test::readSound(folder / "window.opus");
    }
};

TEST_F(Windows, CoverTheTrackToItsEnd) {
    EXPECT_EQ(windowsOf(48000, windows::windowFrames, 1000).size(), 1u);
    EXPECT_EQ(windowsOf(48000, windows::windowFrames + 1, 1000).size(), 2u);
    EXPECT_EQ(windowsOf(48000, 2 * windows::windowFrames + windows::trailFrames, 70000).size(), 3u);
    EXPECT_EQ(windowsOf(48000, 100, 1000).size(), 1u);
}

/// Every sample after the lead lies at its own place in the music, at every rate, in every window: the error against
/// the tone itself is the codec's, far below what one sample's delay would leave (a tone of 700 Hz moves by 9 %).
TEST_F(Windows, HoldTheMusicAtItsPlace) {
    for (const unsigned rate : {48000u, 44100u, 96000u}) {
        const auto made = windowsOf(rate, rate * 9, 16384);
        ASSERT_EQ(made.size(), 3u) << rate;
        for (const std::size_t window : {0u, 1u, 2u}) {
            const auto ears = decoded(made[window]);
            ASSERT_EQ(ears[0].size(), windows::encodedFrames);
            for (const std::size_t ear : {0u, 1u}) {
                double error = 0, power = 0;
                const std::size_t last = window == 2 ? 40000 : windows::windowFrames + windows::trailFrames;
                for (std::size_t frame = window == 0 ? 2000 : 0; frame < last; ++frame) {
                    const double place = static_cast<double>(window * windows::windowFrames + frame) / 48000;
                    const double tone = toneAt(ear, place);
                    error += std::pow(ears[ear][windows::leadFrames + frame] - tone, 2);
                    power += tone * tone;
                }
                EXPECT_LT(std::sqrt(error / power), 0.03)
                    << rate << " Hz, window " << window << ", ear " << ear;
            }
        }
    }
}

TEST_F(Windows, DoNotDependOnHowTheStreamIsCut) {
    const auto coarse = windowsOf(44100, 250000, 30000), fine = windowsOf(44100, 250000, 997);
    ASSERT_EQ(coarse.size(), fine.size());
    for (std::size_t window = 0; window < coarse.size(); ++window) {
        const auto one = decoded(coarse[window]), other = decoded(fine[window]);
        EXPECT_EQ(one, other) << window;
    }
}

} // namespace
