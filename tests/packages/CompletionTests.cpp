// SPDX-License-Identifier: GPL-3.0-or-later
// Bash itself runs the script and answers; what it should answer is read off the sample program.
#include "kestrum/Completion.h"

#include "SampleProgram.h"
#include "support/CommandOutput.h"
#include "support/WaveFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace orvane::kestrum::pages;

namespace {

/// A folder with one file and one folder, in which words are completed.
class BashCompletion : public ::testing::Test {
protected:
    BashCompletion() {
        const test::SampleProgram program;
        std::ofstream(folder.file("script")) << bashCompletion(
            program.app, {{{"--scene", {"Mix Room", "Mix Room A", "It's Club"}}, {"SHAPE", {"round"}}}, {}});
        std::ofstream(folder.file("music.wav")) << "";
        std::filesystem::create_directory(folder.file("my folder"));
    }

    /// The answers, one a line, for the last of these words, given as a bash array.
    std::string complete(const std::string& words) const {
        return test::outputOf("cd " + folder.path() +
                              " && bash --norc -c '. ./script; compopt() { :; }; COMP_WORDS=(" + words +
                              "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _kestrum; "
                              "((${#COMPREPLY[@]})) && printf \"%s\\n\" \"${COMPREPLY[@]}\"' 2>&1");
    }

private:
    test::TemporaryFolder folder;
};

TEST_F(BashCompletion, KnowsTheCommandsAndHidesTheHidden) {
    EXPECT_EQ(complete(R"(kestrum "")"), "draw\ntidy\n");
    EXPECT_EQ(complete("kestrum t"), "tidy\n");
    EXPECT_EQ(complete(R"(kestrum tidy "")"), "all\n");
    EXPECT_EQ(complete("kestrum i"), "");
}

TEST_F(BashCompletion, KnowsTheOptionsOfEachCommand) {
    EXPECT_EQ(complete("kestrum draw --s"), "--scene\n--size\n");
    EXPECT_EQ(complete("kestrum --v"), "--version\n");
    EXPECT_EQ(complete("kestrum tidy --s"), "");
}

TEST_F(BashCompletion, OffersChoicesWithBlanksAsOneWord) {
    EXPECT_EQ(complete("kestrum draw --scene Mix"), "Mix Room\nMix Room A\n");
    EXPECT_EQ(complete(R"(kestrum draw --scene "Mix\\ Room\\ ")"), "Mix Room A\n");
    EXPECT_EQ(complete(R"(kestrum draw -s "\"It")"), "It's Club\n");
    EXPECT_EQ(complete(R"(kestrum draw --scene = Mix)"), "Mix Room\nMix Room A\n");
}

TEST_F(BashCompletion, OffersFilesAndFoldersWhereTheyBelong) {
    EXPECT_EQ(complete("kestrum draw m"), "music.wav\nmy folder\n");
    EXPECT_EQ(complete("kestrum draw --out m"), "my folder\n");
    EXPECT_EQ(complete(R"(kestrum draw --size "")"), "");
}

TEST_F(BashCompletion, CountsArgumentsPastOptionsAndTheirValues) {
    EXPECT_EQ(complete("kestrum draw --scene Club music.wav r"), "round\n");
    EXPECT_EQ(complete("kestrum draw music.wav --raw --size 3 r"), "round\n");
}

/// The program's own script: sets of the machine and of packages as they are when it is asked, each name once.
TEST(BashCompletionOfTheProgram, OffersTheSetsThatThereAre) {
    const test::TemporaryFolder folder;
    for (const char* set : {"root/sets/mine-0123abcd", "root/sets/mine-89abcdef-2",
                            "root/sets/studio-00000000", "root/sets/.new-abcdef", "packaged/kemar"})
        std::filesystem::create_directories(folder.file(set));
    ASSERT_EQ(test::outputOf(KESTRUM_PROGRAM " write-pages " + folder.file("pages") + " 2>&1"), "");
    const auto complete = [&](const std::string& typed) {
        return test::outputOf("cd " + folder.path() +
                              " && KESTRUM_DATA_ROOT=root KESTRUM_PACKAGED_SETS=packaged bash --norc -c '. "
                              "pages/completions/kestrum; compopt() { :; }; COMP_WORDS=(kestrum data use " +
                              typed +
                              "); COMP_CWORD=3; _kestrum; ((${#COMPREPLY[@]})) && printf \"%s\\n\" "
                              "\"${COMPREPLY[@]}\"' 2>&1");
    };
    EXPECT_EQ(complete(R"("")"), "kemar\nmine\nstudio\n");
    EXPECT_EQ(complete("st"), "studio\n");
    std::filesystem::create_directory(folder.file("root/sets/stage-11111111"));
    EXPECT_EQ(complete("st"), "stage\nstudio\n");
    std::filesystem::remove_all(folder.file("root"));
    EXPECT_EQ(complete(R"("")"), "kemar\n") << "a machine without sets of its own";
}

} // namespace
