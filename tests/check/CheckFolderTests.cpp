// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckFolder.h"

#include "CheckSupport.h"

#include <gmock/gmock.h>

namespace {

using namespace orvane::kestrum::check;
using ::test::refusalOf;
using ::testing::HasSubstr;

class CheckFolder : public ::test::FolderTest {
protected:
    CheckFolder() {
        ::test::writeSound(folder / "mix.wav", std::vector<float>(6 * 100, 0.1f), 6);
        mix = openMix(folder / "mix.wav");
    }

    Mix mix;
};

TEST_F(CheckFolder, IsMadeWithItsParts) {
    prepareFolder(folder / "a" / "b", mix);
    EXPECT_TRUE(std::filesystem::is_directory(folder / "a" / "b" / "rendered"));
    EXPECT_TRUE(std::filesystem::is_directory(folder / "a" / "b" / "matched"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "a" / "b"), {}), 3);
    EXPECT_TRUE(std::filesystem::exists(folder / "a" / "b" / ".kestrum-check")); // by which it is known
}

/// A file in the way stops everybody, root too, whom permissions do not.
TEST_F(CheckFolder, ThatCannotBeMadeIsRefused) {
    ::test::writeText(folder / "file", "");
    EXPECT_THAT(refusalOf([&] { prepareFolder(folder / "file" / "check", mix); }),
                HasSubstr("check\": name one of yours on a disk with space."));
}

TEST_F(CheckFolder, WithSomebodyElsesPageIsLeftAlone) {
    ::test::writeText(folder / "index.html", "my own");
    EXPECT_THAT(refusalOf([&] { prepareFolder(folder, mix); }),
                HasSubstr("is no mix check: name another folder."));
    EXPECT_EQ(::test::readText(folder / "index.html"), "my own");
    EXPECT_FALSE(std::filesystem::exists(folder / "rendered"));
}

TEST_F(CheckFolder, IsRefusedWhenTheMixItselfLiesAmongTheResults) {
    prepareFolder(folder, mix);
    for (const auto& place : {renderedFile(folder, "Club"), matchedFile(folder, "Club")}) {
        std::filesystem::copy_file(mix.path, place);
        const Mix inside = openMix(place);
        EXPECT_THAT(refusalOf([&] { prepareFolder(folder, inside); }),
                    HasSubstr("which would write over it: name another folder."));
    }
}

TEST_F(CheckFolder, WithSomebodyElsesFilesInThePlacesOfResultsIsLeftAlone) {
    for (const char* const own : {"rendered/Club.wav", "rendered/Club.json", "matched/Plain downmix.flac"}) {
        const auto theirs = folder / std::filesystem::path(own).stem();
        std::filesystem::create_directories((theirs / own).parent_path());
        ::test::writeText(theirs / own, "my own");
        EXPECT_THAT(refusalOf([&] { prepareFolder(theirs, mix); }),
                    HasSubstr(std::string(own) +
                              "\" is in the place of a result and no check made it: name another folder."));
        EXPECT_EQ(::test::readText(theirs / own), "my own");
        EXPECT_FALSE(std::filesystem::exists(theirs / ".kestrum-check"));
        std::filesystem::remove_all(theirs);
    }
}

TEST_F(CheckFolder, OnceMarkedMayHoldItsOwnResults) {
    prepareFolder(folder, mix);
    ::test::writeText(renderedFile(folder, "Club"), "cut off");
    EXPECT_EQ(refusalOf([&] { prepareFolder(folder, mix); }), "accepted");
    EXPECT_EQ(::test::readText(renderedFile(folder, "Club")), "cut off");
}

TEST_F(CheckFolder, LetsInOneCheckAtATime) {
    prepareFolder(folder, mix);
    {
        const FolderLock first(folder);
        EXPECT_THAT(refusalOf([&] { const FolderLock second(folder); }),
                    HasSubstr("Another check is at work in the folder"));
        EXPECT_EQ(refusalOf([&] { prepareFolder(folder, mix); }), "accepted") << "the list of jobs needs it";
    }
    EXPECT_EQ(refusalOf([&] { const FolderLock next(folder); }), "accepted");
}

TEST_F(CheckFolder, OfAnotherMixIsWrittenOverOnlyWhenAskedToAndNothingIsRemovedBeforehand) {
    prepareFolder(folder, mix);
    const auto jobs = sceneJobs(mix, "5.1 ITU", folder / "rendered", "kestrum", {});
    const std::string others = R"({"layout": "5.1 ITU", "scene": "Club", "sources": {}, "outputFrames": 0})";
    ::test::writeText(renderedFile(folder, "Club"), "sound");
    ::test::writeText(renderedFile(folder, "Van"), "under way");
    ::test::writeText(folder / "rendered" / "Club.json", others);

    EXPECT_THAT(refusalOf([&] { jobsToRun(jobs, "5.1 ITU", "null", false); }),
                HasSubstr("holds the check of another mix or of an earlier one, in another layout, or with "
                          "another plug-in or other data: name another folder"));
    EXPECT_EQ(jobsToRun(jobs, "5.1 ITU", "null", true).size(), 16u);
    EXPECT_EQ(::test::readText(renderedFile(folder, "Club")), "sound");
    EXPECT_EQ(::test::readText(renderedFile(folder, "Van")), "under way");
}

} // namespace
