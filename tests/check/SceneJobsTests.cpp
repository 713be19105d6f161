// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/SceneJobs.h"

#include "CheckSupport.h"
#include "render/Sources.h"
#include "support/CommandOutput.h"

#include <gmock/gmock.h>

#include <array>
#include <chrono>
#include <set>

namespace {

using namespace orvane::kestrum::check;
using ::testing::ElementsAre;

class Jobs : public ::test::FolderTest {
protected:
    Jobs() {
        ::test::writeSound(folder / "mix.wav", std::vector<float>(6 * 100, 0.1f), 6);
        mix = openMix(folder / "mix.wav");
        jobs = sceneJobs(mix, "5.1 ITU", folder / "out", "/bin/kestrum", {});
        std::filesystem::create_directories(folder / "out");
        sources = sourcesNow();
    }

    /// As "kestrum render" leaves them.
    void writeResult(const SceneJob& job, const std::string& layout = "5.1 ITU") {
        ::test::writeSound(job.sound, std::vector<float>(2 * 120, 0.1f), 2);
        ::test::writeText(job.facts, R"({"layout": ")" + layout + R"(", "scene": ")" + job.scene +
                                         R"(", "sources": )" + sources + R"(, "outputFrames": 120})");
    }

    JobResult resultNow(const SceneJob& job) const { return resultOf(job, "5.1 ITU", sourcesNow()); }

    std::string sourcesNow() const {
        return orvane::kestrum::render::sourcesText(mix.path, folder / "P.vst3", folder);
    }

    Mix mix;
    std::vector<SceneJob> jobs;
    std::string sources;
};

TEST_F(Jobs, AreOnePerSceneWithResultsOfTheirOwn) {
    ASSERT_EQ(jobs.size(), 16u);
    EXPECT_EQ(jobs.front().scene, "Mix Room");
    EXPECT_EQ(jobs.back().scene, "Kitchen");
    std::set<std::filesystem::path> files;
    for (const SceneJob& job : jobs)
        files.insert({job.sound, job.facts});
    EXPECT_EQ(files.size(), 32u);
    EXPECT_THAT(jobs[0].command,
                ElementsAre("/bin/kestrum", "render", mix.path.string(),
                            (folder / "out/Mix Room.wav").string(), "--layout", "5.1 ITU", "--scene",
                            "Mix Room", "--json", (folder / "out/Mix Room.json").string()));
}

TEST_F(Jobs, HandOnANamedBundle) {
    const auto named = sceneJobs(mix, "5.1 ITU", folder, "/bin/kestrum", "/some/Bundle.vst3");
    EXPECT_EQ(named[0].command[named[0].command.size() - 2], "--plugin");
    EXPECT_EQ(named[0].command.back(), "/some/Bundle.vst3");
}

TEST_F(Jobs, AreReadyOnceSoundAndFactsAreThere) {
    EXPECT_EQ(resultNow(jobs[3]), JobResult::missing);
    writeResult(jobs[3]);
    EXPECT_EQ(resultNow(jobs[3]), JobResult::ready);
}

TEST_F(Jobs, AreMissingWhenTheyWereCutOff) {
    writeResult(jobs[0]);
    std::filesystem::resize_file(jobs[0].sound, 500);
    EXPECT_EQ(resultNow(jobs[0]), JobResult::missing);
    writeResult(jobs[0]);
    std::filesystem::resize_file(jobs[0].facts, 40);
    EXPECT_EQ(resultNow(jobs[0]), JobResult::missing);
    writeResult(jobs[0]);
    std::filesystem::remove(jobs[0].sound);
    EXPECT_EQ(resultNow(jobs[0]), JobResult::missing);
}

TEST_F(Jobs, AreOthersWhenTheLayoutDiffers) {
    writeResult(jobs[0], "5.1 Film");
    EXPECT_EQ(resultNow(jobs[0]), JobResult::other);
}

TEST_F(Jobs, AreOthersWhenTheMixWasWrittenAnew) {
    writeResult(jobs[0]);
    std::filesystem::last_write_time(mix.path,
                                     std::filesystem::last_write_time(mix.path) + std::chrono::hours(1));
    EXPECT_EQ(resultNow(jobs[0]), JobResult::other);
}

/// Another mix of equal length, moved to the place of the first: older than the renderings, and yet not theirs.
TEST_F(Jobs, AreOthersWhenAnOlderMixTookThePlaceOfTheirs) {
    writeResult(jobs[0]);
    std::filesystem::last_write_time(mix.path,
                                     std::filesystem::last_write_time(mix.path) - std::chrono::hours(1));
    EXPECT_EQ(resultNow(jobs[0]), JobResult::other);
}

TEST_F(Jobs, AreOthersWhenTheDataIsOfAnotherHead) {
    writeResult(jobs[0]);
    ::test::writeText(folder / "about.json", "{}");
    EXPECT_EQ(resultNow(jobs[0]), JobResult::other);
}

TEST_F(Jobs, AreOthersWhenTheFactsDoNotNameTheirSources) {
    writeResult(jobs[0]);
    ::test::writeText(jobs[0].facts,
                      R"({"layout": "5.1 ITU", "scene": ")" + jobs[0].scene + R"(", "outputFrames": 120})");
    EXPECT_EQ(resultNow(jobs[0]), JobResult::other);
}

/// The shell itself takes the line apart again.
TEST(ShellLine, ComesBackFromTheShellWordForWord) {
    const std::array<std::string, 5> words{"printf", "%s\\n", "Mix Room's", "$HOME `id` \"x\" * ; & \\", ""};
    EXPECT_EQ(::test::outputOf(shellLine(words)), "Mix Room's\n$HOME `id` \"x\" * ; & \\\n\n");
}

TEST(ShellLine, LeavesPlainWordsAsTheyAre) {
    const std::array<std::string, 3> words{"/usr/bin/kestrum", "--layout", "7.1.4"};
    EXPECT_EQ(shellLine(words), "/usr/bin/kestrum --layout 7.1.4");
}

} // namespace
