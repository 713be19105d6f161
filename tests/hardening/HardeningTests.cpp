// SPDX-License-Identifier: GPL-3.0-or-later
// The built files themselves, by what the linker has left in them, and the checks at work. Each has a counterpart without
// hardening that shows what the test sees.
#include "Copies.h"
#include "ElfFacts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <string>

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;

TEST(Hardening, IsWholeInTheModuleThatHostsLoad) {
    EXPECT_THAT(test::weaknessesOf(KESTRUM_MODULE), IsEmpty());
}

TEST(Hardening, IsWholeInTheProgram) { EXPECT_THAT(test::weaknessesOf(KESTRUM_PROGRAM), IsEmpty()); }

TEST(Hardening, IsMissedInAProgramThatIsBuiltWithoutIt) {
    EXPECT_THAT(test::weaknessesOf(KESTRUM_UNHARDENED),
                IsSupersetOf({"its addresses are fixed", "its tables stay writable",
                              "its symbols are resolved while it runs", "its stack may be executed",
                              "its stack is not protected", "its copies are not checked",
                              "it looks for libraries in a folder of its own"}));
}

/// The module and the program are many files; one that is compiled without the flags would hide among them.
TEST(Hardening, IsAskedForInEveryFileThatIsCompiled) {
    std::ifstream stream(KESTRUM_COMPILE_COMMANDS);
    const auto commands = nlohmann::json::parse(stream);
    ASSERT_GT(commands.size(), 100u);
    for (const auto& entry : commands) {
        const auto command = entry.at("command").get<std::string>();
        if (command.find("hardening_unhardened") != std::string::npos ||
            command.find("KESTRUM_LEVEL_TWO") != std::string::npos)
            continue;
        for (const char* flag : {" -D_FORTIFY_SOURCE=3 ", " -fstack-protector-strong "})
            EXPECT_THAT(command, HasSubstr(flag)) << entry.at("file");
    }
}

/// 20 bytes into a block of 17: nothing of the heap is hit, so that without the check nobody would ever know.
TEST(HardeningDeathTest, ACopyBeyondABlockWhoseSizeOnlyTheRunningProgramKnowsEndsTheProcess) {
    EXPECT_DEATH(test::writeInto(17, 20), "buffer overflow detected");
    test::writeInto(17, 17);
    test::writeIntoAtLevelTwo(17, 20); // the level below does not see it
}

TEST(HardeningDeathTest, AWriteBeyondAnArrayOnTheStackEndsTheProcess) {
    EXPECT_DEATH(test::writeOnStack(64), "stack smashing detected");
    test::writeOnStack(16);
}

} // namespace
