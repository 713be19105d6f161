// SPDX-License-Identifier: GPL-3.0-or-later
// Expected texts are the tool's promises to its user: one sentence with the remedy.
#include "render/RenderCommand.h"

#include "render/AudioStreams.h"
#include "render/RenderError.h"
#include "support/CommandOutput.h"

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace orvane::kestrum::render;
using ::testing::HasSubstr;

RenderOptions parse(std::vector<std::string> arguments) {
    RenderOptions options;
    CLI::App app;
    addRenderOptions(app, options);
    std::ranges::reverse(arguments); // this library's way of taking a vector
    app.parse(arguments);
    return options;
}

TEST(RenderOptions, HaveTheirDefaultsWhenOnlyTheFilesAreNamed) {
    const RenderOptions options = parse({"in.wav", "out.wav"});
    EXPECT_EQ(options.input, "in.wav");
    EXPECT_EQ(options.output, "out.wav");
    EXPECT_EQ(options.block, 512u);
    EXPECT_EQ(options.settleMilliseconds, 250.0);
    EXPECT_FALSE(options.layout || options.scene || options.ambience || options.focus || options.rotation ||
                 options.gain || options.varyingBlocks || options.automation || options.state ||
                 options.saveState || options.plugin || options.json);
    EXPECT_FALSE(options.raw || options.realtime);
}

TEST(RenderOptions, AllReachTheirFieldsInAnyPlace) {
    const RenderOptions options =
        parse({"--layout",     "5.1 ITU",     "in.wav",   "--scene",          "Kitchen", "--ambience",
               "70",           "--focus",     "-30",      "--rotation",       "-90",     "--gain",
               "-6.5",         "--block",     "64",       "--varying-blocks", "7",       "--automation",
               "a.csv",        "--settle",    "10.5",     "--realtime",       "--state", "s.vstpreset",
               "--save-state", "t.vstpreset", "--plugin", "p.vst3",           "--json",  "j.json",
               "--raw",        "out.wav"});
    EXPECT_EQ(options.input, "in.wav");
    EXPECT_EQ(options.output, "out.wav");
    EXPECT_EQ(options.layout, "5.1 ITU");
    EXPECT_EQ(options.scene, "Kitchen");
    EXPECT_EQ(options.ambience, "70");
    EXPECT_EQ(options.focus, "-30");
    EXPECT_EQ(options.rotation, "-90");
    EXPECT_EQ(options.gain, "-6.5");
    EXPECT_EQ(options.block, 64u);
    EXPECT_EQ(options.varyingBlocks, 7u);
    EXPECT_EQ(options.automation, "a.csv");
    EXPECT_EQ(options.settleMilliseconds, 10.5);
    EXPECT_EQ(options.state, "s.vstpreset");
    EXPECT_EQ(options.saveState, "t.vstpreset");
    EXPECT_EQ(options.plugin, "p.vst3");
    EXPECT_EQ(options.json, "j.json");
    EXPECT_TRUE(options.raw && options.realtime);
}

TEST(RenderOptions, WhatIsMissingOrNoNumberIsAParseError) {
    EXPECT_THROW(parse({"in.wav"}), CLI::RequiredError);
    EXPECT_THROW(parse({"in.wav", "out.wav", "--block", "many"}), CLI::ConversionError);
    EXPECT_THROW(parse({"in.wav", "out.wav", "--settle", "-1"}), CLI::ValidationError);
    EXPECT_THROW(parse({"in.wav", "out.wav", "extra.wav"}), CLI::ExtrasError);
}

class Refusals : public ::testing::Test {
protected:
    Refusals()
        : folder(std::filesystem::temp_directory_path() /
                 (std::string("kestrum_refusal_") +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name())) {
        std::filesystem::create_directories(folder);
        options.input = folder / "in.wav";
        options.output = folder / "out.wav";
        makeInput(2, 48000);
    }

public:
    ~Refusals() override { std::filesystem::remove_all(folder); }

protected:
    void makeInput(unsigned channels, unsigned rate) const {
        SoundFileSink file(options.input, rate, channels);
        file.write(std::vector<float>(channels));
        file.close();
    }

    std::string refusal() const {
        std::ostringstream said;
        try {
            runRender(options, said);
            return "rendered";
        } catch (const RenderError& error) {
            return error.what();
        }
    }

    std::filesystem::path folder;
    RenderOptions options;
};

TEST_F(Refusals, BlocksOfOneSample) {
    options.block = 1;
    EXPECT_EQ(refusal(), "The plug-in does not serve blocks of one sample: choose --block 2 or more.");
}

TEST_F(Refusals, BlocksOfNoSampleOrOfTooMany) {
    options.block = 0;
    EXPECT_THAT(refusal(), HasSubstr("choose --block 2 to 65536."));
    options.block = 65537;
    EXPECT_THAT(refusal(), HasSubstr("choose --block 2 to 65536."));
}

TEST_F(Refusals, ARateThatThePlugInDoesNotServe) {
    makeInput(2, 22050);
    EXPECT_THAT(refusal(), HasSubstr("The plug-in does not serve 22050 Hz: resample the input to 24000, "));
}

TEST_F(Refusals, MoreChannelsThanABusHolds) {
    makeInput(17, 48000);
    EXPECT_EQ(refusal(), "The input has 17 channels and the plug-in takes 16 at most: leave some out.");
}

TEST_F(Refusals, AnInputThatIsNotThere) {
    options.input = folder / "missing.wav";
    EXPECT_THAT(refusal(), HasSubstr("missing.wav\" cannot be read"));
}

TEST_F(Refusals, AnOutputThatIsTheInput) {
    options.output = folder / "." / "in.wav";
    EXPECT_EQ(refusal(), "Input and output are the same file: name another output.");
}

TEST_F(Refusals, AFileNameThatFactsCannotHold) {
    options.output = folder / "out\xff.wav";
    options.json = folder / "facts.json";
    EXPECT_THAT(refusal(), HasSubstr("is not UTF-8, in which facts are written: rename the file or folder."));
    EXPECT_FALSE(std::filesystem::exists(options.output));
}

TEST_F(Refusals, NoOutputIsMadeWhenTheWorkIsRefused) {
    options.block = 1;
    refusal();
    EXPECT_FALSE(std::filesystem::exists(options.output));
}

TEST(Bundles, NoneBesideTheProgramNorInstalledIsRefusedWithTheRemedy) {
    const auto empty = std::filesystem::temp_directory_path() / "kestrum_no_bundle_here";
    std::filesystem::create_directories(empty);
    const char* const home = std::getenv("HOME");
    const std::string homeBefore = home != nullptr ? home : "";
    setenv("HOME", empty.c_str(), 1);
    try {
        EXPECT_THAT(findBundle(empty).string(),
                    HasSubstr("/lib/vst3")); // only where one is installed for all users
    } catch (const RenderError& error) {
        EXPECT_THAT(error.what(),
                    HasSubstr("build it (cmake --build --preset release) or name it with --plugin."));
    }
    std::filesystem::create_directories(empty / "Orvane KESTRUM.vst3");
    EXPECT_EQ(findBundle(empty), empty / "Orvane KESTRUM.vst3");
    setenv("HOME", homeBefore.c_str(), 1);
    std::filesystem::remove_all(empty);
}

std::string fileContent(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Documentation, OfEachCommandShowsTheHelpThatTheProgramPrints) {
    for (const std::string command : {"render", "demo"}) {
        const std::string help = ::test::outputOf("\"" KESTRUM_PROGRAM "\" " + command + " --help");
        ASSERT_THAT(help, HasSubstr("Usage: kestrum " + command));
        EXPECT_THAT(
            fileContent(std::filesystem::path(KESTRUM_DOCS) / "tools" / ("kestrum-" + command + ".md")),
            HasSubstr("```text\n" + help + "```"));
    }
}

TEST(Program, TellsItsVersionAndFailsWithOneSentence) {
    EXPECT_EQ(::test::outputOf("\"" KESTRUM_PROGRAM "\" --version"), "kestrum 1.7.0\n");
    EXPECT_EQ(::test::outputOf("\"" KESTRUM_PROGRAM "\" render in.wav out.wav --block 1 2>&1; echo $?"),
              "kestrum: The plug-in does not serve blocks of one sample: choose --block 2 or more.\n1\n");
}

} // namespace
