// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/sets/About.h"
#include "room/PlainHead.h"

#include "FoldedFolder.h"
#include "Refusal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

using namespace orvane::kestrum::tools;
using test::refusal;
using ::testing::AllOf;
using ::testing::HasSubstr;

namespace {

/// A store of sets that share one head; their files are links to it, as nobody writes to them here.
class PlainHeads : public ::testing::Test {
protected:
    std::filesystem::path addSet(const std::string& name, const std::string& about) {
        std::filesystem::path set = root.file("sets/" + name);
        std::filesystem::create_directories(set);
        for (const ResponseFile& file : responseFiles)
            std::filesystem::create_symlink(test::soundFolder() + "/" + std::string(file.name),
                                            set / file.name);
        writeAbout(about, set);
        return set;
    }
    std::filesystem::path addFoldedSet(const std::string& name, const std::string& about) {
        std::filesystem::path set = addSet(name, about);
        test::declareHeadphones(set);
        return set;
    }
    static std::string aboutOfMeasurement(const std::string& name) {
        return aboutWithRooms(R"({"method": 1, "input": {"file": ")" + name + R"("}})");
    }
    SetStore store() const { return {root.path(), root.file("packaged")}; }

    test::TemporaryFolder root;
};

TEST_F(PlainHeads, OfAFolderWithoutHeadphonesAreItsOwn) {
    const PlainHead plain = plainHeadOf(test::soundFolder(), store());
    EXPECT_EQ(plain.folder, test::soundFolder());
    EXPECT_FALSE(plain.headphones);
}

TEST_F(PlainHeads, OfAFolderWithHeadphonesAreThoseOfTheSameMeasurement) {
    addSet("another-00000001", aboutOfMeasurement("another.sofa"));
    addFoldedSet("folded-too-00000002", aboutOfMeasurement("mine.sofa"));
    const auto mine = addSet("mine-00000003", aboutOfMeasurement("mine.sofa"));
    const auto folded = addFoldedSet("studio-00000004", aboutOfMeasurement("mine.sofa"));
    const PlainHead plain = plainHeadOf(folded, store());
    EXPECT_EQ(plain.folder, mine);
    ASSERT_TRUE(plain.headphones);
    const HeadphoneCurve told = readHeadphones(folded / "headphones.txt").curve;
    EXPECT_DOUBLE_EQ(plain.headphones->curve.gainDb(3000), told.gainDb(3000));
}

/// Rooms of one's own, on either side, do not change the head.
TEST_F(PlainHeads, AreFoundWhicheverRoomsAreBesideThem) {
    const auto mine = addSet("mine-00000001", aboutOfMeasurement("mine.sofa"));
    const auto folded = addFoldedSet("studio-00000002", aboutOfMeasurement("mine.sofa"));
    writeAbout(aboutWithOwnRoom(mine, 15, {{"scene", "Mix Room"}}), mine);
    writeAbout(aboutWithOwnRoom(folded, 19, {{"scene", "Living Room"}}), folded);
    EXPECT_EQ(plainHeadOf(folded, store()).folder, mine);
}

TEST_F(PlainHeads, ThatNoSetHasOrThatAreNotSoundAreRefused) {
    const auto folded = addFoldedSet("studio-00000001", aboutOfMeasurement("mine.sofa"));
    const auto refused = [&] { return refusal([&] { plainHeadOf(folded, store()); }); };
    const auto sentence =
        AllOf(HasSubstr("which no set of this machine holds"), HasSubstr("kestrum data hrir --sofa FILE"));
    EXPECT_THAT(refused(), sentence);
    const auto mine = addSet("mine-00000002", aboutOfMeasurement("mine.sofa"));
    EXPECT_EQ(refused(), "nothing refused");
    std::filesystem::remove(mine / responseFiles[1].name);
    EXPECT_THAT(refused(), sentence);
}

} // namespace
