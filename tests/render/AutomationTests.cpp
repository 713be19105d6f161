// SPDX-License-Identifier: GPL-3.0-or-later
// Expected values are the fields of the lines written here.
#include "render/Automation.h"

#include "StandInPlugin.h"
#include "render/RenderError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using namespace orvane::kestrum::render;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::vector<AutomationLine> parse(const std::string& text) {
    std::istringstream stream(text);
    return parseAutomation(stream);
}

std::string refusal(const std::string& text) {
    try {
        parse(text);
        return "accepted";
    } catch (const RenderError& error) {
        return error.what();
    }
}

TEST(Automation, FieldsAreSplitAtTheFirstTwoCommasAndFreedOfBlanks) {
    const auto lines = parse("0.5, scene , Living Room \n1,x,a,b");
    ASSERT_THAT(lines, SizeIs(2));
    EXPECT_EQ(lines[0].seconds, 0.5);
    EXPECT_EQ(lines[0].parameter, "scene");
    EXPECT_EQ(lines[0].value, "Living Room");
    EXPECT_EQ(lines[1].value, "a,b");
}

TEST(Automation, HeadingsRemarksBlankLinesAndWindowsLineEndsAreSkipped) {
    const auto lines = parse("seconds,parameter,value\r\n\r\n# softer\r\n2,gain,-6\r\n");
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_EQ(lines[0].value, "-6");
    EXPECT_THAT(parse(""), IsEmpty());
}

TEST(Automation, AMalformedLineIsNamedByItsNumber) {
    EXPECT_EQ(refusal("1,gain,0\n2,gain"),
              "Line 2 of the automation is not of the form seconds,parameter,value.");
    EXPECT_EQ(refusal("\nsoon,gain,0"),
              "\"soon\" is no number for the time in line 2 of the automation: write one such as 2.5.");
    EXPECT_EQ(refusal("-1,gain,0"),
              "Line 1 of the automation has a negative time: count seconds from the input's start.");
}

TEST(Automation, QuotationMarksAndAByteOrderMarkOfASpreadsheetDoNotCount) {
    const auto lines =
        parse("\xef\xbb\xbf\"seconds\",\"parameter\",\"value\"\r\n\"0.5\",\"scene\",\"Living Room\"\r\n");
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_EQ(lines[0].seconds, 0.5);
    EXPECT_EQ(lines[0].parameter, "scene");
    EXPECT_EQ(lines[0].value, "Living Room");
}

TEST(Automation, AMissingFileOrAFolderIsNamedWithTheRemedy) {
    for (const std::string& path : {std::string("/nowhere/moves.csv"), ::testing::TempDir()}) {
        try {
            readAutomation(path);
            ADD_FAILURE() << path << " was accepted";
        } catch (const RenderError& error) {
            EXPECT_EQ(error.what(), "The automation file \"" + path +
                                        "\" cannot be read: name a file with lines seconds,parameter,value.");
        }
    }
}

TEST(Automation, EventsComeInTimeOrderAndThoseOfOneMomentInTheFilesOrder) {
    const test::StandInPlugin plugin;
    const ChoiceTable layouts = test::standInLayouts();
    const ChoiceTable scenes = test::standInScenes();
    const auto events = resolveAutomation(parse("1,gain,2\n0.5,scene,Wet\n1,gain,0"),
                                          Controls(plugin, layouts, scenes), 1000);
    ASSERT_THAT(events, SizeIs(3));
    EXPECT_EQ(events[0].frame, 500u);
    EXPECT_TRUE(events[0].value.rebuilds);
    EXPECT_EQ(events[1].value.normalized, 1.0);
    EXPECT_EQ(events[2].value.normalized, 0.0);
    EXPECT_EQ(events[2].frame, 1000u);
}

/// What stands in a file is shown in sentences; none of it may steer the terminal. The last is a control as UTF-8 has it.
TEST(Automation, WithControlCharactersIsRefusedWithoutShowingThem) {
    for (const std::string sign : {"\x1b[31m", "\a", "\b", "\x7f", "\xc2\x9b"})
        EXPECT_EQ(refusal("0,gain,1\n1,scene,red" + sign + "\n"),
                  "Line 2 of the automation holds control characters: save the file as plain text.");
    EXPECT_EQ(refusal("0,scene,\xc2\xb0\n"), "accepted"); // a degree sign is none
}

} // namespace
