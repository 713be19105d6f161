// SPDX-License-Identifier: GPL-3.0-or-later
// Properties of whole runs through the built bundle; the data folder has to be installed.
#include "host/PluginInstance.h"
#include "host/PresetFile.h"
#include "render/AudioStreams.h"
#include "render/RenderCommand.h"
#include "render/RenderError.h"
#include "render/Sources.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane::kestrum::render;
using orvane::kestrum::host::Module;
using orvane::kestrum::host::PluginInstance;
using orvane::kestrum::host::ProcessMode;
using orvane::kestrum::host::readPreset;
using orvane::kestrum::host::writePreset;
using ::testing::HasSubstr;

constexpr std::size_t inputLength = 30000;

class WholeRuns : public ::testing::Test {
protected:
    WholeRuns()
        : folder(std::filesystem::temp_directory_path() /
                 (std::string("kestrum_run_") +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name())) {
        std::filesystem::create_directories(folder);
        options.plugin = KESTRUM_BUNDLE;
        options.input = folder / "in.wav";
        options.output = folder / "out.wav";
        options.scene = "Analytic Dry";
        makeInput(6);
    }

public:
    ~WholeRuns() override { std::filesystem::remove_all(folder); }

protected:
    /// Seeded noise in every channel.
    void makeInput(unsigned channels) {
        std::mt19937 random(5);
        noise.assign(channels * inputLength, 0.0f);
        for (float& sample : noise)
            sample = static_cast<float>(random() % 2001) / 10000.0f - 0.1f;
        SoundFileSink file(options.input, 48000, channels);
        file.write(noise);
        file.close();
    }

    /// Renders with the present options. @return what was said.
    std::string run() const {
        std::ostringstream said;
        runRender(options, said);
        return said.str();
    }
    std::string refusal() const {
        try {
            return run();
        } catch (const RenderError& error) {
            return error.what();
        }
    }
    std::string fileContent(const std::filesystem::path& path) const {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// Renders and @return the bytes of the result.
    std::string rendered() const {
        run();
        return fileContent(options.output);
    }
    /// The result's channels.
    std::vector<std::vector<float>> channelsOfResult() const {
        SoundFileSource file(options.output);
        std::vector<std::vector<float>> channels(file.channelCount(), std::vector<float>(file.frameCount()));
        std::vector<float*> pointers(channels.size());
        std::ranges::transform(channels, pointers.begin(), [](auto& channel) { return channel.data(); });
        file.read(pointers, file.frameCount());
        return channels;
    }
    void automate(const std::string& lines) {
        options.automation = folder / "moves.csv";
        std::ofstream(*options.automation) << lines;
    }

    std::filesystem::path folder;
    RenderOptions options;
    std::vector<float> noise; ///< The input, interleaved.
};

TEST_F(WholeRuns, GiveStereoAtTheInputsRateNoShorterThanTheInput) {
    EXPECT_THAT(run(), HasSubstr("Layout \"5.1 ITU\", chosen by the input's channel count (6)"));
    const SoundFileSource result(options.output);
    EXPECT_EQ(result.sampleRate(), 48000u);
    EXPECT_EQ(result.channelCount(), 2u);
    EXPECT_GE(result.frameCount(), inputLength);
    EXPECT_LT(result.frameCount(), inputLength + 24000); // a dry room has no tail to speak of
}

TEST_F(WholeRuns, RawIsTheStreamThatThePlugInReturns) {
    options.raw = true;
    options.block = 500;
    run();
    const auto channels = channelsOfResult();

    PluginInstance plugin(std::make_shared<Module>(KESTRUM_BUNDLE));
    plugin.setChannelCounts(6, 2);
    plugin.setParameter(findParameter(plugin, "Speaker Layouts")->id, 10.0 / 31); // "5.1 ITU" is number 10
    plugin.setParameter(findParameter(plugin, "Scenes")->id, 3.0 / 15); // "Analytic Dry" is number 3
    plugin.prepare(48000, 500, ProcessMode::offline);
    ASSERT_EQ(channels[0].size(), inputLength); // 60 whole blocks
    std::vector<std::vector<float>> block(8, std::vector<float>(500));
    std::vector<const float*> in(6);
    std::vector<float*> out(2);
    for (std::size_t channel = 0; channel < 6; ++channel)
        in[channel] = block[channel].data();
    out[0] = block[6].data();
    out[1] = block[7].data();
    for (std::size_t first = 0; first < inputLength; first += 500) {
        for (std::size_t frame = 0; frame < 500; ++frame)
            for (std::size_t channel = 0; channel < 6; ++channel)
                block[channel][frame] = noise[(first + frame) * 6 + channel];
        plugin.process(in, out, 500);
        for (std::size_t frame = 0; frame < 500; ++frame) {
            ASSERT_EQ(channels[0][first + frame], block[6][frame]);
            ASSERT_EQ(channels[1][first + frame], block[7][frame]);
        }
    }
}

TEST_F(WholeRuns, RawRoundsTheLengthUpToWholeBlocks) {
    options.raw = true;
    options.block = 4096;
    run();
    EXPECT_EQ(SoundFileSource(options.output).frameCount(), 8u * 4096);
}

TEST_F(WholeRuns, RepeatByteForByteInEqualAndInVaryingBlocks) {
    for (const bool raw : {false, true}) {
        options.raw = raw;
        options.varyingBlocks.reset();
        const std::string first = rendered();
        EXPECT_EQ(rendered(), first);
        for (const std::uint32_t seed : {1u, 2u}) {
            options.varyingBlocks = seed;
            EXPECT_EQ(rendered(), first) << "seed " << seed;
        }
    }
}

TEST_F(WholeRuns, WithoutRawAreTheRawStreamWithoutItsDelay) {
    options.block = 480;
    options.raw = true;
    run();
    const auto raw = channelsOfResult();
    options.raw = false;
    run();
    const auto result = channelsOfResult();
    for (std::size_t frame = 0; frame + 480 < raw[0].size(); ++frame)
        ASSERT_EQ(result[0][frame], raw[0][frame + 480]) << frame;
}

TEST_F(WholeRuns, AnAutomatedGainComesOutTheSameHoweverTheHostCutsTheStream) {
    automate("0.1,gain,-12\n0.3,Master Gain,6\n");
    const std::string first = rendered();
    options.varyingBlocks = 3;
    EXPECT_EQ(rendered(), first);
    options.automation.reset();
    EXPECT_NE(rendered(), first);
}

TEST_F(WholeRuns, AnAutomatedLayoutIsHeardFromItsMomentOn) {
    options.raw = true;
    run();
    const auto before = channelsOfResult();
    automate("0.3125,layout,Quad\n"); // frame 15000
    run();
    const auto after = channelsOfResult();
    std::size_t same = 0;
    while (same < before[0].size() && before[0][same] == after[0][same])
        ++same;
    EXPECT_GE(same, 15000u);
    EXPECT_LT(same, 15000u + 2 * 512); // the next internal block already belongs to the fade
}

TEST_F(WholeRuns, AStateBringsBackTheSoundAndTheLayout) {
    options.layout = "Quad";
    options.gain = "-6.5";
    options.saveState = folder / "quad.vstpreset";
    const std::string first = rendered();

    RenderOptions restored;
    restored.plugin = options.plugin;
    restored.input = options.input;
    restored.output = options.output;
    restored.state = options.saveState;
    std::ostringstream said;
    runRender(restored, said);
    EXPECT_THAT(said.str(), HasSubstr("Layout \"Quad\", as the state has it."));
    EXPECT_EQ(fileContent(options.output), first);

    restored.gain = "0"; // an option goes on top of the state
    runRender(restored, said);
    EXPECT_NE(fileContent(options.output), first);
}

TEST_F(WholeRuns, APresetOfAnotherPlugInIsRefused) {
    options.saveState = folder / "own.vstpreset";
    run();
    auto preset = readPreset(*options.saveState);
    preset.classId[0] = preset.classId[0] == '0' ? '1' : '0';
    options.state = folder / "other.vstpreset";
    writePreset(*options.state, preset);
    EXPECT_THAT(refusal(),
                HasSubstr("belongs to another plug-in: name one that was saved by Orvane KESTRUM."));
}

TEST_F(WholeRuns, TooFewChannelsForTheLayoutAreRefusedWithTheRemedy) {
    options.layout = "7.1.4";
    EXPECT_EQ(refusal(), "The layout \"7.1.4\" needs 12 channels and the input has 6: name a smaller one, or "
                         "give an input with a channel for each loudspeaker.");
}

/// The plug-in itself would fall silent there, and the listener would not know why.
TEST_F(WholeRuns, AnAutomatedLayoutWithTooFewChannelsIsRefusedBeforeAnythingIsFed) {
    automate("0.1,layout,Quad\n0.2,layout,7.1\n");
    EXPECT_THAT(refusal(), HasSubstr("The layout \"7.1\" needs 8 channels and the input has 6"));
    EXPECT_FALSE(std::filesystem::exists(options.output));
}

TEST_F(WholeRuns, ACountWithoutUsualLayoutAsksForOneAndTakesIt) {
    makeInput(3);
    EXPECT_EQ(refusal(), "No usual layout has 3 channels: name one of at most as many with --layout.");
    options.layout = "Stereo"; // as the menu shows "2.0 +/-30°"
    EXPECT_THAT(refusal(), HasSubstr("of stereo at 48000 Hz"));
}

TEST_F(WholeRuns, UnknownNamesAndValuesOutsideTheRangeAreRefused) {
    options.scene = "Cave";
    EXPECT_THAT(
        refusal(),
        HasSubstr("There is no Scene \"Cave\"; choose one of: \"Mix Room\" (shown as \"Mix Room A\"), "));
    options.scene.reset();
    options.ambience = "101";
    EXPECT_EQ(refusal(), "Ambience 101 lies outside its range: choose 0 to 100.");
    options.ambience.reset();
    automate("0,pan,1\n");
    EXPECT_THAT(refusal(), HasSubstr("The plug-in has no parameter \"pan\"; it has: \"Speaker Layouts\", "));
}

TEST_F(WholeRuns, AMissingBundleIsRefusedWithTheRemedy) {
    options.plugin = folder / "missing.vst3";
    EXPECT_THAT(refusal(),
                HasSubstr("missing.vst3\": name the folder whose name ends in .vst3 with --plugin."));
}

TEST_F(WholeRuns, TheFactsAreWrittenAsJson) {
    options.json = folder / "facts.json";
    options.block = 513;
    run();
    const auto facts = nlohmann::json::parse(fileContent(*options.json));
    EXPECT_EQ(facts.at("sampleRate"), 48000);
    EXPECT_EQ(facts.at("channels"), 6);
    EXPECT_EQ(facts.at("layout"), "5.1 ITU");
    EXPECT_EQ(facts.at("scene"), "Analytic Dry");
    EXPECT_EQ(facts.at("inputFrames"), inputLength);
    EXPECT_EQ(facts.at("outputFrames"), SoundFileSource(options.output).frameCount());
    EXPECT_EQ(facts.at("block"), 513);
    EXPECT_EQ(facts.at("latencyReported"), 1024);
    EXPECT_EQ(facts.at("delayRemoved"), 513);
    EXPECT_GT(facts.at("meanBlockTimeShare"), 0.0);
    EXPECT_GE(facts.at("worstBlockTimeShare"), facts.at("meanBlockTimeShare"));
    float peak = 0;
    for (const auto& channel : channelsOfResult())
        for (const float sample : channel)
            peak = std::max(peak, std::abs(sample));
    EXPECT_EQ(facts.at("peak"), peak);
    EXPECT_NEAR(facts.at("peakDb").get<double>(), 20 * std::log10(static_cast<double>(peak)), 1e-6);
    EXPECT_LT(facts.at("integratedLoudnessLufs"), 0.0);
}

TEST_F(WholeRuns, TheFactsTellTheFilesThatTheSoundWasMadeOf) {
    options.json = folder / "facts.json";
    run();
    const auto facts = nlohmann::json::parse(fileContent(*options.json));
    EXPECT_EQ(facts.at("sources"), nlohmann::json::parse(sourcesText(options.input, KESTRUM_BUNDLE)));
}

/// The first text that is said moves the input's time: by then the run has begun.
class TouchingBuffer final : public std::stringbuf {
public:
    explicit TouchingBuffer(std::filesystem::path path) : path(std::move(path)) {}

protected:
    std::streamsize xsputn(const char* text, std::streamsize count) override {
        std::filesystem::last_write_time(path,
                                         std::filesystem::last_write_time(path) + std::chrono::hours(1));
        return std::stringbuf::xsputn(text, count);
    }

private:
    std::filesystem::path path;
};

TEST_F(WholeRuns, AnInputThatChangesMeanwhileLeavesNoFactsNotEvenThoseOfAnEarlierRun) {
    options.json = folder / "facts.json";
    run();
    TouchingBuffer buffer(options.input);
    std::ostream said(&buffer);
    try {
        runRender(options, said);
        FAIL() << "expected a refusal";
    } catch (const RenderError& error) {
        EXPECT_THAT(error.what(), HasSubstr("changed during the rendering: render anew once"));
    }
    EXPECT_FALSE(std::filesystem::exists(*options.json));
}

TEST_F(WholeRuns, SilenceStaysSilenceAndHasNoLevels) {
    SoundFileSink(options.input, 48000, 6).write(std::vector<float>(6 * 1000));
    options.json = folder / "facts.json";
    EXPECT_THAT(run(), HasSubstr("The result is digital silence"));
    EXPECT_EQ(SoundFileSource(options.output).frameCount(), 1000u);
    const auto facts = nlohmann::json::parse(fileContent(*options.json));
    EXPECT_TRUE(facts.at("peakDb").is_null());
    EXPECT_TRUE(facts.at("integratedLoudnessLufs").is_null());
}

} // namespace
