// SPDX-License-Identifier: GPL-3.0-or-later
// Expected values are the entries of the table written here.
#include "render/ChoiceTable.h"

#include "render/RenderError.h"

#include <gtest/gtest.h>

namespace {

using orvane::kestrum::render::ChoiceTable;
using orvane::kestrum::render::equalIgnoringCase;
using orvane::kestrum::render::RenderError;

const ChoiceTable table("room", {{"A", "First", 1}, {"B", "B", 2}, {"First B", "C", 3}});

TEST(ChoiceTable, FindsAnEntryByItsNameAndByTheNameShown) {
    EXPECT_EQ(table.find("A").channelCount, 1u);
    EXPECT_EQ(table.find("First").channelCount, 1u);
    EXPECT_EQ(table.find("C").channelCount, 3u);
}

TEST(ChoiceTable, UpperAndLowerCaseAreTheSame) {
    EXPECT_EQ(table.find("first b").channelCount, 3u);
    EXPECT_TRUE(equalIgnoringCase("aZ\xC2\xB0", "Az\xC2\xB0"));
    EXPECT_FALSE(equalIgnoringCase("a", "ab"));
    EXPECT_FALSE(equalIgnoringCase("[", "{")); // 32 apart, and no letters
}

TEST(ChoiceTable, AnUnknownNameIsAnsweredWithAllChoices) {
    EXPECT_EQ(table.search("D"), nullptr);
    try {
        table.find("D");
        FAIL() << "expected an exception";
    } catch (const RenderError& error) {
        EXPECT_STREQ(error.what(),
                     "There is no room \"D\"; choose one of: \"A\" (shown as \"First\"), \"B\", "
                     "\"First B\" (shown as \"C\").");
    }
}

TEST(ChoiceTable, AnEmptyNameIsUnknown) { EXPECT_EQ(table.search(""), nullptr); }

} // namespace
