// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/StagedFiles.h"

#include "CheckSupport.h"

#include <gmock/gmock.h>

namespace {

using namespace orvane::kestrum::check;
using ::test::readText;
using ::test::writeText;
using ::testing::HasSubstr;

class Staged : public ::test::FolderTest {
protected:
    Staged() {
        writeText(one, "old");
        writeText(two, "old");
    }

    std::size_t filesThere() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
    }

    std::filesystem::path one = folder / "one.flac", two = folder / "two.html";
};

TEST_F(Staged, FilesTakeTheirPlacesTogetherAtTheEnd) {
    StagedFiles files;
    writeText(files.add(one), "new");
    writeText(files.add(two), "new");
    EXPECT_EQ(readText(one) + readText(two), "oldold");
    files.publish();
    EXPECT_EQ(readText(one) + readText(two), "newnew");
    EXPECT_EQ(filesThere(), 2u);
}

TEST_F(Staged, FilesThatNeverTakeTheirPlacesAreRemoved) {
    {
        StagedFiles files;
        writeText(files.add(one), "new");
        files.add(two); // not written at all
    }
    EXPECT_EQ(readText(one) + readText(two), "oldold");
    EXPECT_EQ(filesThere(), 2u);
}

TEST_F(Staged, FilesWhosePlaceIsTakenByAFolderAreRefused) {
    StagedFiles files;
    std::filesystem::create_directories(folder / "three" / "in the way");
    writeText(files.add(folder / "three"), "new");
    EXPECT_THAT(::test::refusalOf([&] { files.publish(); }),
                HasSubstr("three\" cannot be put into its place"));
}

} // namespace
