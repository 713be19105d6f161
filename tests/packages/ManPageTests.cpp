// SPDX-License-Identifier: GPL-3.0-or-later
#include "kestrum/ManPage.h"
#include "kestrum/PagesCommand.h"

#include "SampleProgram.h"
#include "support/CommandOutput.h"
#include "support/WaveFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>

using namespace orvane::kestrum::pages;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

std::string pageOf(const test::SampleProgram& program, const std::string& name) {
    const auto commands = commandsOf(program.app);
    const auto found =
        std::ranges::find_if(commands, [&](const Command& command) { return command.spelled(" ") == name; });
    return found == commands.end() ? "" : manPage(*found, commands, "1.2.3");
}

/// The words of a text, wherever its lines break.
std::vector<std::string> wordsOf(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), std::istream_iterator<std::string>()};
}

TEST(ManPages, AreMadeForEveryCommandThatTheHelpShows) {
    const test::SampleProgram program;
    std::vector<std::string> names;
    for (const Command& command : commandsOf(program.app))
        names.push_back(manPageFileName(command));
    EXPECT_THAT(names, ElementsAre("kestrum.1", "kestrum-draw.1", "kestrum-tidy.1", "kestrum-tidy-all.1"));
}

TEST(ManPages, TellNameArgumentsOptionsAndExamples) {
    const std::string page = pageOf(test::SampleProgram(), "kestrum draw");
    EXPECT_THAT(page,
                AllOf(HasSubstr(".TH KESTRUM\\-DRAW 1"), HasSubstr("kestrum\\-draw \\- draws the room\n"),
                      HasSubstr("\\fBkestrum draw\\fR [\\fIOPTIONS\\fR] \\fIIN\\fR [\\fISHAPE\\fR]"),
                      HasSubstr(".SS Sound\n.TP\n\\fB\\-\\-scene\\fR, \\fB\\-s\\fR \\fINAME\\fR"),
                      HasSubstr("\\fB\\-\\-raw\\fR\nDraw nothing but lines")));
    EXPECT_THAT(
        page,
        AllOf(HasSubstr("Size. Default: 12."),
              HasSubstr(".nf\nkestrum draw a.wav \\-\\-scene \"Mix Room\"\nkestrum draw .hidden\n.fi")));
}

TEST(ManPages, HideWhatTheHelpHides) {
    EXPECT_THAT(pageOf(test::SampleProgram(), "kestrum draw"), Not(HasSubstr("secret")));
    EXPECT_THAT(pageOf(test::SampleProgram(), "kestrum"), Not(HasSubstr("internal")));
}

TEST(ManPages, LeadToParentsChildrenAndSiblings) {
    EXPECT_THAT(
        pageOf(test::SampleProgram(), "kestrum tidy"),
        HasSubstr(".SH SEE ALSO\n.BR kestrum (1),\n.BR kestrum\\-draw (1),\n.BR kestrum\\-tidy\\-all (1)\n"));
}

TEST(ManPages, TakeNoLineOfTextForAMacro) {
    EXPECT_THAT(pageOf(test::SampleProgram(), "kestrum draw"),
                HasSubstr("\\&.A line that begins with a dot\nand a back\\eslash."));
    EXPECT_EQ(roff("'a'\n.b"), "\\&'a'\n\\&.b");
}

TEST(WritePages, RefusesAFolderThatCannotBeMade) {
    const test::SampleProgram program;
    EXPECT_THROW(writePages(program.app, {}, "1", "/proc/none"), std::runtime_error);
}

/// The formatter itself is the judge: it warns about every macro or escape that it does not know.
TEST(PagesOfTheProgram, AreFormattedWithoutAWarningAndHoldEveryWordOfTheirHelp) {
    const test::TemporaryFolder folder;
    ASSERT_EQ(test::outputOf(KESTRUM_PROGRAM " write-pages " + folder.path() + " 2>&1"), "");
    if (test::outputOf("command -v groff").empty())
        GTEST_SKIP() << "groff is not installed.";
    int pageCount = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.file("man1"))) {
        ++pageCount;
        const std::string formatted = test::outputOf(
            "groff -man -Tascii -P-c -P-b -P-u -rLL=500n -rHY=0 -ww " + entry.path().string() + " 2>&1");
        EXPECT_THAT(formatted, Not(HasSubstr("warning:"))) << entry.path();
        std::string command = entry.path().stem();
        std::ranges::replace(command, '-', ' ');
        if (command.ends_with("decay table"))
            command = "kestrum data decay-table";
        const std::string help = test::outputOf(std::string(KESTRUM_PROGRAM) + command.substr(7) + " --help");
        for (const std::string& word : wordsOf(help)) {
            if (word.starts_with("--")) {
                EXPECT_THAT(formatted, HasSubstr(word.substr(0, word.find('=')))) << command;
            }
        }
    }
    EXPECT_GE(pageCount, 9);
}

} // namespace
