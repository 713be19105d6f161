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
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "a" / "b"), {}), 2);
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

TEST_F(CheckFolder, OfAnotherMixIsWrittenOverOnlyWhenAskedTo) {
    prepareFolder(folder, mix);
    const auto jobs = sceneJobs(mix, "5.1 ITU", folder / "rendered", "kestrum", {});
    const std::string others =
        "{\"input\": \"/elsewhere/mix.wav\", \"layout\": \"5.1 ITU\", \"scene\": \"Club\", "
        "\"inputFrames\": 100, \"channels\": 6, \"sampleRate\": 48000, \"outputFrames\": 0}";
    ::test::writeText(renderedFile(folder, "Club"), "sound");
    ::test::writeText(folder / "rendered" / "Club.json", others);

    EXPECT_THAT(
        refusalOf([&] { jobsToRun(jobs, mix, "5.1 ITU", false); }),
        HasSubstr(
            "holds the check of another mix, of an earlier one, or in another layout: name another folder"));
    EXPECT_EQ(::test::readText(renderedFile(folder, "Club")), "sound");

    EXPECT_EQ(jobsToRun(jobs, mix, "5.1 ITU", true).size(), 16u);
    EXPECT_FALSE(std::filesystem::exists(renderedFile(folder, "Club")));
}

} // namespace
