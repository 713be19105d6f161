// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever would make a rendering sound different has to make the text different; what would not, not.
#include "render/Sources.h"

#include "host/Module.h"
#include "support/ScratchFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using orvane::kestrum::render::sourcesText;
using ::testing::HasSubstr;
using ::testing::Ne;

class Sources : public ::testing::Test {
protected:
    Sources() {
        std::filesystem::create_directories(binary.parent_path());
        write(binary, "code");
        write(input, "mix");
        for (const char* const name : {"one", "two"}) {
            std::filesystem::create_directory(folder.path / name);
            write(folder.path / name / "about.json", R"({"origin": "a head"})");
        }
        std::filesystem::create_directory_symlink("one", data);
        before = now();
    }

    static void write(const std::filesystem::path& path, const std::string& text) {
        std::ofstream(path) << text;
    }

    static void makeOlder(const std::filesystem::path& path) {
        std::filesystem::last_write_time(path,
                                         std::filesystem::last_write_time(path) - std::chrono::hours(1));
    }

    std::string now() const { return sourcesText(input, bundle, data); }

    test::ScratchFolder folder;
    std::filesystem::path input = folder.path / "mix.wav", bundle = folder.path / "P.vst3",
                          binary = orvane::kestrum::host::Module::binaryOf(bundle),
                          data = folder.path / "data";
    std::string before;
};

TEST_F(Sources, AreTheSameWhileNothingChanges) { EXPECT_EQ(now(), before); }

TEST_F(Sources, DifferWhenTheInputIsAnotherFileOfTheSameName) {
    write(input, "longer mix");
    EXPECT_THAT(now(), Ne(before));
}

/// A copy that keeps its time, or an older take that is moved into the place.
TEST_F(Sources, DifferWhenTheInputIsOfTheSameSizeAndOlder) {
    makeOlder(input);
    EXPECT_THAT(now(), Ne(before));
}

TEST_F(Sources, DifferWhenThePlugInIsAnotherBuild) {
    makeOlder(binary);
    EXPECT_THAT(now(), Ne(before));
}

TEST_F(Sources, DifferWhenAnotherSetIsInUse) {
    std::filesystem::remove(data);
    std::filesystem::create_directory_symlink("two", data);
    EXPECT_THAT(now(), Ne(before));
}

TEST_F(Sources, DifferWhenTheSetTellsOfAnotherHead) {
    write(data / "about.json", R"({"origin": "another head"})");
    EXPECT_THAT(now(), Ne(before));
}

TEST_F(Sources, AreTheSameWhenTheSameSetWasMadeAtAnotherTime) {
    makeOlder(data / "about.json");
    EXPECT_EQ(now(), before);
}

TEST_F(Sources, ThatAreNotThereAreNull) {
    for (const auto& path : {input, binary, data / "about.json"})
        std::filesystem::remove(path);
    EXPECT_THAT(now(), HasSubstr(R"({"input":null,"plugin":null,"dataFolder":")"));
    EXPECT_THAT(now(), HasSubstr(R"("dataAbout":null})"));
}

} // namespace
