// SPDX-License-Identifier: GPL-3.0-or-later
// Whole sets with headphones folded in: seconds each.
#include "data/DataError.h"
#include "data/headphones/HeadphoneFold.h"
#include "data/headphones/HeadphoneReport.h"
#include "data/sets/About.h"
#include "data/sets/FolderCheck.h"

#include "CompleteFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

using namespace orvane::kestrum::tools;
using ::testing::AllOf;
using ::testing::HasSubstr;

namespace {

constexpr const char* typicalText = "Preamp: -6.2 dB\n"
                                    "Filter 1: ON LSC Fc 105 Hz Gain 5.5 dB Q 0.70\n"
                                    "Filter 2: ON PK Fc 2100 Hz Gain -2.4 dB Q 1.83\n";

class FoldedSets : public ::testing::Test {
protected:
    static AboutHeadphones toldOf(const Headphones& headphones) {
        return {headphones.fileName,       headphones.sha256,          headphones.copyName,
                headphones.description,    headphones.curve.levelDb(), headphones.curve.leastDb(),
                headphones.curve.mostDb(), headphoneMethodNumber};
    }
    /// A complete set with the text's headphones.
    FoldReport fold(const test::TemporaryFolder& set, const std::string& text) const {
        test::writeCompleteSet(set.path(), test::syntheticAbout());
        std::ofstream(input.file("mine.txt")) << text;
        const Headphones headphones = readHeadphones(input.file("mine.txt"));
        return foldHeadphones(set.path(), headphones, input.file("mine.txt"),
                              aboutWithHeadphones(test::syntheticAbout(), toldOf(headphones)));
    }
    std::string faultOf(const test::TemporaryFolder& set) const {
        for (const FileVerdict& verdict : checkDataFolder(set.path()))
            if (!verdict.sound)
                return verdict.name + ": " + verdict.finding + "; " + verdict.remedy;
        return "";
    }
    test::TemporaryFolder input;
};

TEST_F(FoldedSets, AreSoundAndSayWhatTheyAreFor) {
    const test::TemporaryFolder set;
    fold(set, typicalText);
    EXPECT_EQ(faultOf(set), "");
    EXPECT_EQ(test::readBytes(set.file("headphones.txt")), typicalText);
    const auto about = aboutHeadphones(set.path());
    ASSERT_TRUE(about);
    EXPECT_EQ(about->fileName, "mine.txt");
    EXPECT_NEAR(about->levelDb, -6.2, 1);
    EXPECT_THAT(checkAbout(set.path()).finding, HasSubstr("mine.txt"));
    const auto carried = headphonesIn(set.path());
    ASSERT_TRUE(carried);
    EXPECT_NEAR(carried->curve.gainDb(2100), readHeadphones(input.file("mine.txt")).curve.gainDb(2100), 1e-9);
}

/// Property: a folded set of a far lower level is sound because it says so, and would not be if it did not.
TEST_F(FoldedSets, AreCheckedAgainstTheLevelThatTheirHeadphonesGiveThem) {
    const test::TemporaryFolder set;
    fold(set, "Preamp: -22 dB\n");
    EXPECT_EQ(faultOf(set), "");
    writeAbout(test::syntheticAbout(), set.path());
    EXPECT_THAT(faultOf(set), HasSubstr("instead of about 0 dB"));
}

TEST_F(FoldedSets, AreNotSoundWithoutTheirCorrection) {
    const test::TemporaryFolder set;
    fold(set, typicalText);
    std::ofstream(set.file("headphones.txt"), std::ios::app) << "# one more line\n";
    EXPECT_THAT(faultOf(set),
                AllOf(HasSubstr("headphones.txt is not the correction"), HasSubstr("--headphone-eq")));
    EXPECT_THROW(headphonesIn(set.path()), DataError);
    std::filesystem::remove(set.file("headphones.txt"));
    EXPECT_THAT(faultOf(set), HasSubstr("is missing"));
}

/// Null test, equal bits.
TEST_F(FoldedSets, AreTheSameBytesEveryTime) {
    const test::TemporaryFolder set;
    const test::TemporaryFolder again;
    fold(set, typicalText);
    fold(again, typicalText);
    for (const auto& entry : std::filesystem::directory_iterator(set.path()))
        EXPECT_TRUE(test::readBytes(entry.path()) ==
                    test::readBytes(again.file(entry.path().filename().string())))
            << entry.path();
}

TEST_F(FoldedSets, TellBandByBandWhatWasReachedAndWhatWasLimited) {
    const test::TemporaryFolder set;
    const FoldReport report = fold(set, "Preamp: -3 dB\nFilter 1: ON LSC Fc 80 Hz Gain 20 dB Q 0.7\n");
    std::ostringstream out;
    tellFold(readHeadphones(input.file("mine.txt")), report, out);
    EXPECT_THAT(out.str(), AllOf(HasSubstr("1 filter on, 0 off, pre-amplification -3.0 dB"),
                                 HasSubstr("Limited to +12 dB"), HasSubstr("31 Hz"), HasSubstr("16 kHz"),
                                 HasSubstr("44.1 kHz"), HasSubstr("follows to 1 dB from")));
}

} // namespace
