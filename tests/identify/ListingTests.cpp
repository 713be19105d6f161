// SPDX-License-Identifier: GPL-3.0-or-later
// Expected rows are the tables as listed for people, in other columns than the product's.
#include "identify/Listing.h"

#include "identify/IdentifyCommand.h"
#include "identify/TextTable.h"
#include "parameters/ListedTables.h"
#include "support/CommandOutput.h"

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace orvane::kestrum;
using identify::TextTable;
using nlohmann::json;
using ::testing::HasSubstr;

/// What one of the commands prints.
std::string said(const std::string& commandLine) {
    CLI::App program("", "kestrum");
    std::ostringstream out;
    identify::addIdentifyCommands(program, out);
    try {
        program.parse(commandLine);
    } catch (const CLI::ParseError& error) {
        program.exit(error, out, out);
    }
    return out.str();
}

/// "azimuth/elevation", or "LFE", of every channel in turn.
std::string placesOf(const json& layout) {
    std::string places;
    for (const json& channel : layout.at("channels")) {
        places += places.empty() ? "" : ", ";
        if (channel.at("lowFrequency")) {
            places += "LFE";
            continue;
        }
        places += channel.at("azimuth").dump();
        if (channel.at("elevation") != 0)
            places += "/" + channel.at("elevation").dump();
    }
    return places;
}

TEST(LayoutsAsJson, AreThoseThatAreListed) {
    const json layouts = json::parse(said("layouts --json"));
    ASSERT_EQ(layouts.size(), std::size(listed::layouts));
    for (std::size_t index = 0; index < layouts.size(); ++index) {
        const listed::Layout& expected = listed::layouts[index];
        const json& layout = layouts[index];
        EXPECT_EQ(layout.at("index"), index);
        EXPECT_EQ(layout.at("name"), expected.name);
        EXPECT_EQ(layout.at("menuName"), expected.shownAs);
        EXPECT_EQ(layout.at("id"), expected.id);
        EXPECT_EQ(layout.at("channelCount"), expected.channels);
        EXPECT_EQ(placesOf(layout), expected.speakers);
    }
    EXPECT_EQ(layouts[3].at("section"), "Mono/Stereo");
    EXPECT_EQ(layouts[4].at("section"), "Horizontal Plane");
    EXPECT_EQ(layouts[31].at("section"), "With Heights");
}

TEST(LayoutsAsJson, TellEachChannelsNumberNameAndWords) {
    const json layout = json::parse(said("layouts --json 5.1.4"));
    EXPECT_EQ(layout.at("channels").at(6),
              json::parse(R"({"channel": 7, "name": "Ltf", "spoken": "left top front", "lowFrequency": false,
                              "azimuth": -45, "elevation": 45})"));
    EXPECT_EQ(layout.at("channels").at(3),
              json::parse(R"({"channel": 4, "name": "LFE", "spoken": "low frequencies",
                                                           "lowFrequency": true})"));
}

TEST(ScenesAsJson, AreThoseThatAreListed) {
    const json scenes = json::parse(said("scenes --json"));
    ASSERT_EQ(scenes.size(), std::size(listed::scenes));
    for (std::size_t index = 0; index < scenes.size(); ++index) {
        const listed::Scene& expected = listed::scenes[index];
        const json& scene = scenes[index];
        SCOPED_TRACE(expected.name);
        EXPECT_EQ(scene.at("name"), expected.name);
        EXPECT_EQ(scene.at("menuName"), expected.shownAs);
        EXPECT_EQ(scene.at("id"), expected.id);
        EXPECT_EQ(scene.at("room"), expected.room);
        const json &reflections = scene.at("reflections"), &reverb = scene.at("reverb"),
                   &walls = scene.at("wallsMetres");
        EXPECT_EQ(reflections.at("on"), expected.reflectionsOn);
        EXPECT_EQ(reverb.at("on"), expected.reverbOn);
        std::vector<float> values{reflections.at("gainDb"),     reflections.at("lowPassHz"),
                                  reflections.at("highPassHz"), reverb.at("gainDb"),
                                  reverb.at("lowPassHz"),       reverb.at("highPassHz")};
        EXPECT_EQ(walls.is_null(), !expected.customRoom);
        std::size_t wall = 6;
        for (const char* const name : {"ceiling", "front", "back", "right", "left", "floor"})
            values.push_back(walls.is_null() ? expected.values[wall++] : walls.at(name).get<float>());
        values.insert(values.end(),
                      {reverb.at("decayPercent"), scene.at("sourceDistanceMetres"), scene.at("gainDb")});
        EXPECT_THAT(values, ::testing::ElementsAreArray(expected.values));
    }
}

TEST(ScenesAsJson, ReadAsTheyAreListedNotAsFloatsFallOut) {
    EXPECT_THAT(said("scenes --json"), HasSubstr("\"sourceDistanceMetres\": 18.9,\n    \"gainDb\": 17.4\n"));
}

TEST(TextTables, AlignByLettersNotByBytes) {
    TextTable table({{"Name"}, {"Count", TextTable::Side::right}});
    table.row({"2.0 +/-0°", "2"});
    table.section("Wide");
    table.row({"16", "1600000"});
    std::ostringstream out;
    table.print(out);
    EXPECT_EQ(out.str(), "Name         Count\n"
                         "2.0 +/-0°        2\n"
                         "\n"
                         "Wide\n"
                         "16         1600000\n");
}

TEST(PrintedLayouts, NameEveryChannelInBusOrder) {
    const std::string table = said("layouts");
    EXPECT_THAT(table, HasSubstr("5.1 Film                            6  L C R Ls Rs LFE\n"));
    EXPECT_THAT(table, HasSubstr("\nHorizontal Plane\nLRCS "));
    for (const listed::Layout& layout : listed::layouts)
        EXPECT_THAT(table, HasSubstr("\n" + std::string(layout.name) + " ")) << layout.name;
}

TEST(PrintedLayouts, OfOneNameShowALinePerChannel) {
    EXPECT_EQ(said("layouts \"5.1 film\""), "Channel  Name  Azimuth/elevation  Says            Voice\n"
                                            "      1  L                   -30  front left      recorded\n"
                                            "      2  C                     0  front centre    recorded\n"
                                            "      3  R                    30  front right     recorded\n"
                                            "      4  Ls                 -110  left surround   synthetic\n"
                                            "      5  Rs                  110  right surround  synthetic\n"
                                            "      6  LFE                                      tone\n");
}

std::string pageOf(const std::string& command) {
    std::ifstream file(std::filesystem::path(KESTRUM_DOCS) / "tools" / ("kestrum-" + command + ".md"));
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Documentation, OfIdentifyLayoutsAndScenesShowsTheHelpThatTheProgramPrints) {
    for (const std::string command : {"identify", "layouts", "scenes"}) {
        const std::string help = test::outputOf("\"" KESTRUM_PROGRAM "\" " + command + " --help");
        ASSERT_THAT(help, HasSubstr("Usage: kestrum " + command));
        EXPECT_THAT(pageOf(command), HasSubstr("```text\n" + help + "```"));
    }
}

TEST(Documentation, ShowsTheTablesThatTheProgramPrints) {
    for (const std::string command : {"layouts", "scenes"})
        EXPECT_THAT(pageOf(command), HasSubstr("```text\n" + said(command) + "```")) << command;
}

TEST(IdentifyOptions, ThatMakeNoSenseTogetherAreRefused) {
    EXPECT_THAT(said("identify Stereo out.wav --scene Kitchen"), HasSubstr("--scene requires --rendered"));
    EXPECT_THAT(said("identify Stereo out.wav --rate 22050"), HasSubstr("22050 not in {24000,44100,48000,"));
    EXPECT_THAT(said("identify Stereo"), HasSubstr("OUT is required"));
}

} // namespace
