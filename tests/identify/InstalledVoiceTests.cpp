// SPDX-License-Identifier: GPL-3.0-or-later
// The voices as Debian installs them, and what is said when they are not there.
#include "identify/IdentifyCommand.h"

#include "StandInVoices.h"
#include "identify/Voices.h"
#include "render/RenderError.h"
#include "support/CommandOutput.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <iterator>
#include <numeric>
#include <sstream>

namespace {

using namespace orvane::kestrum;
using identify::IdentifyRequest;
using ::testing::HasSubstr;

std::string refusalOf(const IdentifyRequest& request) {
    std::ostringstream said;
    try {
        identify::runIdentify(request, said);
        return "no refusal";
    } catch (const render::RenderError& error) {
        return error.what();
    }
}

class InstalledVoices : public ::testing::Test {
protected:
    InstalledVoices() { request.output = folder.path / "bus.wav"; }

    /// The turns of the file for `layout`, each the one channel that sounds in it.
    std::vector<std::vector<float>> turnsOf(const std::string& layout) {
        request.layout = layout;
        std::ostringstream said;
        identify::runIdentify(request, said);
        const auto channels = test::readChannels(request.output);
        std::vector<std::vector<float>> turns;
        const std::size_t length = channels.front().size() / channels.size();
        for (std::size_t turn = 0; turn < channels.size(); ++turn) {
            const auto start = channels[turn].begin() + static_cast<std::ptrdiff_t>(turn * length);
            turns.emplace_back(start, start + static_cast<std::ptrdiff_t>(length));
        }
        return turns;
    }

    test::ScratchFolder folder;
    IdentifyRequest request;
};

/// A program that fails with a status of its own.
std::filesystem::path failingProgram(const std::filesystem::path& folder) {
    std::filesystem::path path = folder / "mute";
    std::ofstream(path) << "#!/bin/sh\nexit 3\n";
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
}

/// Similarity of two sounds at the best shift within a tenth of a second: 1 for scaled copies.
double likeness(const std::vector<float>& sound, const std::vector<float>& recording) {
    const auto energy = [](const std::vector<float>& samples) {
        return std::inner_product(samples.begin(), samples.end(), samples.begin(), 0.0);
    };
    double best = 0;
    for (std::size_t shift = 0; shift < 4800; ++shift) {
        const std::size_t length =
            std::min(sound.size(), recording.size() - std::min(shift, recording.size()));
        best = std::max(best,
                        std::inner_product(sound.begin(), sound.begin() + static_cast<std::ptrdiff_t>(length),
                                           recording.begin() + static_cast<std::ptrdiff_t>(shift), 0.0));
    }
    return best / std::sqrt(energy(sound) * energy(recording));
}

/// Every channel of this layout is recorded or a tone; the wrong recording in a channel would be the worst mistake.
TEST_F(InstalledVoices, OfARecordedLayoutAreTheRecordingsThatSayItsNames) {
    const std::array<const char*, 8> listed{"Front_Left", "Front_Right", "Front_Center", nullptr,
                                            "Side_Left",  "Side_Right",  "Rear_Left",    "Rear_Right"};
    const auto turns = turnsOf("7.1");
    ASSERT_EQ(turns.size(), listed.size());
    for (std::size_t channel = 0; channel < listed.size(); ++channel) {
        if (listed[channel] == nullptr)
            continue;
        const auto own = render::readRecording(
            std::filesystem::path(render::spokenNamesFolder) / (std::string(listed[channel]) + ".wav"), "");
        const std::size_t other =
            listed[(channel + 1) % 8] != nullptr ? (channel + 1) % 8 : (channel + 2) % 8;
        EXPECT_GT(likeness(turns[channel], own.samples), 0.99) << listed[channel];
        EXPECT_LT(likeness(turns[other], own.samples), 0.5) << listed[channel];
    }
}

/// The reference is the synthesiser, asked by hand for the words.
TEST_F(InstalledVoices, OfANameWithoutRecordingAreTheSynthesisersWords) {
    const auto turns = turnsOf("5.1 ITU");
    const std::array<std::pair<std::size_t, const char*>, 2> spoken{
        {{4, "left surround"}, {5, "right surround"}}};
    for (const auto& [channel, words] : spoken) {
        const auto file = folder.path / "words.wav";
        test::outputOf("espeak-ng -v en-gb -s 140 -w " + file.string() + " '" + words + "'");
        auto expected = identify::preparedVoice(render::readRecording(file, ""), 48000);
        expected.resize(turns[channel].size());
        EXPECT_EQ(turns[channel], expected) << words;
    }
}

TEST_F(InstalledVoices, WithoutTheRecordingsAreRefusedWithThePackage) {
    request.layout = "Stereo";
    request.recordings = folder.path;
    EXPECT_THAT(refusalOf(request),
                HasSubstr("Front_Left.wav\" is missing: install Debian's package alsa-utils."));
    EXPECT_FALSE(std::filesystem::exists(request.output));
}

TEST_F(InstalledVoices, WithoutTheSynthesiserAreRefusedWithThePackage) {
    request.layout = "5.1 ITU";
    request.speechProgram = "no-such-synthesiser";
    EXPECT_EQ(refusalOf(request),
              "The program \"no-such-synthesiser\", which speaks the names of channels, is "
              "missing: install Debian's package espeak-ng.");
    EXPECT_FALSE(std::filesystem::exists(request.output));
}

TEST_F(InstalledVoices, OfAFailingSynthesiserAreRefusedWithWhatItWasToSay) {
    request.layout = "5.1 ITU";
    request.speechProgram = failingProgram(folder.path);
    EXPECT_THAT(refusalOf(request), HasSubstr("could not say \"left surround\" (exit status 3): install"));
}

TEST_F(InstalledVoices, OfALayoutWithRecordingsAloneNeedNoSynthesiser) {
    request.speechProgram = "no-such-synthesiser";
    EXPECT_EQ(turnsOf("7.1 SDDS Logic").size(), 8u);
}

/// The folder for temporary files is the test's own, so that no other program's file is met there.
TEST_F(InstalledVoices, LeaveNoFilesBehind) {
    const auto temporary = folder.path / "temporary";
    std::filesystem::create_directory(temporary);
    setenv("TMPDIR", temporary.c_str(), 1);
    turnsOf("5.1 ITU");
    request.speechProgram = failingProgram(folder.path);
    request.replace = true;
    EXPECT_THAT(refusalOf(request), HasSubstr("could not say"));
    unsetenv("TMPDIR");
    EXPECT_TRUE(std::filesystem::is_empty(temporary));
}

TEST_F(InstalledVoices, WithoutAFolderForTemporaryFilesAreRefusedWithTheRemedy) {
    setenv("TMPDIR", (folder.path / "none").c_str(), 1);
    request.layout = "5.1 ITU";
    EXPECT_THAT(refusalOf(request),
                ::testing::MatchesRegex("There is no folder for temporary files .*: name one of "
                                        "yours in TMPDIR\\."));
    unsetenv("TMPDIR");
    EXPECT_FALSE(std::filesystem::exists(request.output));
}

/// What can be known beforehand is refused before a file is written; a stereo bus needs the recordings alone.
class RefusedRequests : public InstalledVoices {
protected:
    RefusedRequests() { request.layout = "Stereo"; }

    std::size_t filesThere() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder.path), {}));
    }
};

TEST_F(RefusedRequests, OfAnUnknownSceneLeaveNoFile) {
    request.rendered = true;
    request.scene = "Cave";
    EXPECT_THAT(refusalOf(request), HasSubstr("There is no Scene \"Cave\"; choose one of: "));
    EXPECT_EQ(filesThere(), 0u);
}

TEST_F(RefusedRequests, OfABundleThatIsNotThereLeaveNoFile) {
    request.rendered = true;
    request.plugin = folder.path / "none.vst3";
    EXPECT_THAT(refusalOf(request), HasSubstr("none.vst3\": name the folder whose name ends in .vst3"));
    EXPECT_EQ(filesThere(), 0u);
}

TEST_F(RefusedRequests, OfAnotherKindOfFileLeaveNoFile) {
    for (const char* const name : {"bus", "bus.flac", "mix.mp3"}) {
        request.output = folder.path / name;
        EXPECT_THAT(refusalOf(request), HasSubstr("is written as WAV: give it a name that ends in .wav."));
    }
    EXPECT_EQ(filesThere(), 0u);
    request.output = folder.path / "BUS.WAV";
    EXPECT_EQ(refusalOf(request), "no refusal");
}

TEST_F(RefusedRequests, OfAFileThatIsThereLeaveItAsItIs) {
    for (const char* const name : {"bus.wav", "bus-headphones.wav"}) {
        std::ofstream(folder.path / name) << "my own";
        request.rendered = true;
        EXPECT_THAT(refusalOf(request),
                    HasSubstr(std::string(name) +
                              "\" is there already: name another, or write over it with --replace."));
        EXPECT_EQ(std::filesystem::file_size(folder.path / name), 6u);
        EXPECT_EQ(filesThere(), 1u);
        std::filesystem::remove(folder.path / name);
    }
}

TEST_F(RefusedRequests, MayWriteOverAFileWhenAskedTo) {
    std::ofstream(request.output) << "my own";
    request.replace = true;
    EXPECT_EQ(refusalOf(request), "no refusal");
    EXPECT_EQ(test::readChannels(request.output).size(), 2u);
}

} // namespace
