// SPDX-License-Identifier: GPL-3.0-or-later
// Whole runs through the built bundle; the data folder has to be installed.
#include "identify/ChannelFile.h"
#include "identify/IdentifyCommand.h"

#include "StandInVoices.h"
#include "parameters/core/LayoutTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

using namespace orvane::kestrum;
using ::testing::HasSubstr;

double levelDb(const std::vector<float>& samples, std::size_t first, std::size_t length) {
    double power = 0;
    for (std::size_t index = first; index < first + length; ++index)
        power += static_cast<double>(samples.at(index)) * samples[index];
    return 10 * std::log10(power / static_cast<double>(length));
}

/// The ear on a loudspeaker's side is the louder one; straight ahead, behind and above both are alike. This is what a
/// listener goes by, so a voice on the wrong side would make the file worthless.
TEST(HeadphoneVersions, LetEveryVoiceOfEveryLayoutComeFromItsLoudspeakersSide) {
    const test::ScratchFolder folder;
    for (const core::LayoutRow& layout : core::layoutTable()) {
        SCOPED_TRACE(layout.name);
        identify::IdentifyRequest request;
        request.layout = layout.name;
        request.output = folder.path / "bus.wav";
        request.rendered = true;
        request.replace = true; // the file of the layout before
        request.scene = "Analytic Dry";
        request.plugin = KESTRUM_BUNDLE;
        std::ostringstream said;
        identify::runIdentify(request, said);
        EXPECT_THAT(said.str(), HasSubstr("bus-headphones.wav: "));
        const auto ears = test::readChannels(folder.path / "bus-headphones.wav");
        ASSERT_EQ(ears.size(), 2u);
        for (std::size_t channel = 0; channel < layout.speakers.size(); ++channel) {
            const core::SpeakerRow& speaker = layout.speakers[channel];
            const std::size_t start = channel * 96000;
            const double left = levelDb(ears[0], start, 96000 - 12000),
                         right = levelDb(ears[1], start, 96000 - 12000);
            const bool aside = !speaker.lowFrequency && speaker.azimuth != 0 && speaker.azimuth != 180;
            const double nearer = speaker.azimuth < 0 ? left - right : right - left;
            if (aside)
                EXPECT_GT(nearer, 1.0) << "channel " << channel + 1;
            else
                EXPECT_NEAR(left, right, 1.0) << "channel " << channel + 1;
            EXPECT_GT(std::max(left, right), -45) << "channel " << channel + 1;
            EXPECT_LT(std::max(left, right), -10) << "channel " << channel + 1;
        }
    }
}

TEST(HeadphoneVersions, LieBesideTheFile) {
    EXPECT_EQ(identify::headphoneVersionOf("some/folder/bus.wav"), "some/folder/bus-headphones.wav");
    EXPECT_EQ(identify::headphoneVersionOf("bus"), "bus-headphones.wav");
}

} // namespace
