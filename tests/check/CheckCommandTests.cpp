// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckCommand.h"

#include "CheckSupport.h"
#include "support/CommandOutput.h"

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>

#include <algorithm>

namespace {

using namespace orvane::kestrum::check;
using ::testing::HasSubstr;

CheckOptions parse(std::vector<std::string> arguments) {
    CheckOptions options;
    CLI::App app;
    addCheckOptions(app, options);
    std::ranges::reverse(arguments); // this library's way of taking a vector
    app.parse(arguments);
    return options;
}

TEST(CheckCommandLine, HasItsDefaultsWhenOnlyMixAndFolderAreNamed) {
    const CheckOptions options = parse({"mix.wav", "out"});
    EXPECT_EQ(options.mix, "mix.wav");
    EXPECT_EQ(options.folder, "out");
    EXPECT_EQ(options.loudness, -23);
    EXPECT_FALSE(options.layout || options.processes || options.plugin || options.listJobs ||
                 options.replace);
}

TEST(CheckCommandLine, BringsAllToItsPlace) {
    const CheckOptions options = parse({"--layout", "7.1.4", "mix.wav", "--loudness", "-18", "--jobs", "3",
                                        "--plugin", "p.vst3", "--replace", "--list-jobs", "out"});
    EXPECT_EQ(options.layout, "7.1.4");
    EXPECT_EQ(options.loudness, -18);
    EXPECT_EQ(options.processes, 3u);
    EXPECT_EQ(options.plugin, "p.vst3");
    EXPECT_TRUE(options.listJobs && options.replace);
}

TEST(CheckCommandLine, RefusesWhatIsOutOfRange) {
    EXPECT_THROW(parse({"mix.wav"}), CLI::RequiredError);
    EXPECT_THROW(parse({"mix.wav", "out", "--loudness", "-5"}), CLI::ValidationError);
    EXPECT_THROW(parse({"mix.wav", "out", "--jobs", "0"}), CLI::ValidationError);
}

TEST(CheckDocumentation, ShowsTheHelpThatTheProgramPrints) {
    const std::string help = ::test::outputOf("\"" KESTRUM_PROGRAM "\" check --help");
    ASSERT_THAT(help, HasSubstr("Usage: kestrum check"));
    EXPECT_THAT(::test::readText(std::filesystem::path(KESTRUM_DOCS) / "tools" / "kestrum-check.md"),
                HasSubstr("```text\n" + help + "```"));
}

/// The name comes from a mix that was made on another system.
TEST(CheckProgram, RefusesANameThatFactsCannotHoldWithOneSentence) {
    const ::test::ScratchFolder folder;
    const auto mix = folder.path / "mix\xff.wav";
    ::test::writeSound(mix, std::vector<float>(6 * 4800, 0.1f), 6);
    const std::string command = "\"" KESTRUM_PROGRAM "\" check '" + mix.string() + "' '" +
                                (folder.path / "out").string() + "' --layout '5.1 ITU' 2>&1; echo $?";
    EXPECT_THAT(::test::outputOf(command),
                HasSubstr("is not UTF-8, in which facts are written: rename the file "
                          "or folder.\n1\n"));
    EXPECT_FALSE(std::filesystem::exists(folder.path / "out"));
}

TEST(CheckProgram, FailsWithOneSentence) {
    EXPECT_THAT(::test::outputOf("\"" KESTRUM_PROGRAM "\" check /none.wav out 2>&1; echo $?"),
                ::testing::MatchesRegex("kestrum: The input \"/none.wav\" cannot be read .*\n1\n"));
}

} // namespace
