// SPDX-License-Identifier: GPL-3.0-or-later
// Properties of whole checks through the built bundle; the data folder has to be installed.
#include "CheckSupport.h"
#include "check/CheckFolder.h"
#include "check/Page.h"
#include "check/TrackMeasures.h"
#include "render/Names.h"
#include "support/CommandOutput.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <sstream>

namespace {

using namespace orvane::kestrum::check;
using orvane::kestrum::render::sceneChoices;
using ::test::outputOf;
using ::test::readText;
using ::testing::HasSubstr;

constexpr double seconds = 1.5;

class WholeCheck : public ::test::FolderTest {
protected:
    /// Seeded noise in every channel of 5.1.
    WholeCheck() {
        std::mt19937 random(11);
        std::vector<float> noise(6 * static_cast<std::size_t>(seconds * 48000));
        for (float& sample : noise)
            sample = static_cast<float>(random() % 2001) / 5000.0f - 0.2f;
        ::test::writeSound(folder / "mix.wav", noise, 6);
    }

    std::string command(const std::string& out, const std::string& more = "") const {
        return "\"" KESTRUM_PROGRAM "\" check '" + (folder / "mix.wav").string() + "' '" +
               (folder / out).string() + "' --layout '5.1 ITU' --plugin '" KESTRUM_BUNDLE "' " + more;
    }

    std::string run(const std::string& out, const std::string& more = "") const {
        return outputOf(command(out, more) + " 2>&1; echo status $?");
    }

    static std::vector<std::string> names() {
        std::vector<std::string> all{downmixName};
        for (const auto& scene : sceneChoices().all())
            all.push_back(scene.name);
        return all;
    }
};

TEST_F(WholeCheck, GivesSeventeenCopiesOfOneLoudnessAndAPage) {
    const std::string said = run("out");
    EXPECT_THAT(said, HasSubstr("status 0"));
    EXPECT_THAT(said, HasSubstr("Kitchen: done"));
    EXPECT_TRUE(isPage(pagePath(folder / "out")));
    for (const std::string& name : names()) {
        const auto measures = measureTrack(matchedFile(folder / "out", name), 4);
        ASSERT_TRUE(measures.loudness) << name;
        EXPECT_NEAR(*measures.loudness, -23, 0.05) << name; // 24-bit steps and the meter's gate
        EXPECT_LE(measures.truePeakDb, -0.95) << name;
    }
}

TEST_F(WholeCheck, KeepsWhatIsRenderedAndRefusesAnotherMixInItsPlace) {
    ASSERT_THAT(run("out"), HasSubstr("status 0"));
    const auto written = std::filesystem::last_write_time(renderedFile(folder / "out", "Club"));
    std::filesystem::remove(folder / "out" / "rendered" / "Van.json"); // as if it had been stopped
    EXPECT_THAT(run("out", "--loudness -30"), HasSubstr("15 of 16 Scenes are rendered already and kept"));
    EXPECT_EQ(std::filesystem::last_write_time(renderedFile(folder / "out", "Club")), written);
    EXPECT_NEAR(*measureTrack(matchedFile(folder / "out", "Van"), 4).loudness, -30, 0.05);

    const std::string page = readText(pagePath(folder / "out"));
    const std::string other =
        command("out", "--list-jobs").replace(command("out").find("5.1 ITU"), 7, "5.1 Film");
    EXPECT_THAT(outputOf(other + " 2>&1; echo status $?"), HasSubstr("--replace.\nstatus 1"));
    EXPECT_EQ(readText(pagePath(folder / "out")), page);
    EXPECT_THAT(outputOf(other + " --replace | wc -l"), HasSubstr("16"));
    EXPECT_EQ(std::filesystem::last_write_time(renderedFile(folder / "out", "Club")), written)
        << "a list removes nothing";
}

/// An earlier take, moved to the place of the mix, is older than the renderings, and as long as the mix was.
TEST_F(WholeCheck, RefusesAnOlderMixOfTheSameLengthInThePlaceOfTheMix) {
    ASSERT_THAT(run("out"), HasSubstr("status 0"));
    const auto mix = folder / "mix.wav";
    std::filesystem::last_write_time(mix, std::filesystem::last_write_time(mix) - std::chrono::hours(1));
    EXPECT_THAT(run("out"), HasSubstr("--replace.\nstatus 1"));
    EXPECT_THAT(run("out", "--replace"), HasSubstr("status 0"));
}

TEST_F(WholeCheck, LeavesTheCopiesOfTheLastOneWhenItFails) {
    ASSERT_THAT(run("out"), HasSubstr("status 0"));
    const auto copy = matchedFile(folder / "out", "Club");
    const auto written = std::filesystem::last_write_time(copy);
    const auto inTheWay = matchedFile(folder / "out", "Van") += ".part";
    std::filesystem::create_directory(inTheWay);
    EXPECT_THAT(run("out", "--loudness -30"), HasSubstr("cannot be written"));
    EXPECT_EQ(std::filesystem::last_write_time(copy), written);
}

/// Every job is one process; run by others, in any order, it gives the same bytes.
TEST_F(WholeCheck, IsTheSameWhenOthersRunTheListedJobs) {
    if (outputOf("command -v parallel").empty())
        GTEST_SKIP() << "GNU parallel is not installed";
    ASSERT_THAT(run("here"), HasSubstr("status 0"));
    const std::string jobs = outputOf(command("there", "--list-jobs"));
    EXPECT_EQ(std::ranges::count(jobs, '\n'), 16);
    ::test::writeText(folder / "jobs", jobs);
    outputOf("parallel --jobs 2 < '" + (folder / "jobs").string() + "'");
    EXPECT_EQ(outputOf(command("there", "--list-jobs")), "");
    EXPECT_THAT(run("there"), HasSubstr("16 of 16 Scenes are rendered already and kept"));
    EXPECT_TRUE(readText(pagePath(folder / "here")) == readText(pagePath(folder / "there")));
    for (const std::string& name : names()) {
        EXPECT_TRUE(readText(renderedFile(folder / "here", name)) ==
                    readText(renderedFile(folder / "there", name)))
            << name;
        EXPECT_TRUE(readText(matchedFile(folder / "here", name)) ==
                    readText(matchedFile(folder / "there", name)))
            << name;
    }
}

TEST_F(WholeCheck, SaysWhyAMixCannotBeMatched) {
    ::test::writeSound(folder / "mix.wav", std::vector<float>(6 * 48000, 1e-6f), 6);
    EXPECT_THAT(run("out"), HasSubstr("has no loudness, since all of it lies under the gate of -70 LUFS"));
    EXPECT_FALSE(std::filesystem::exists(pagePath(folder / "out")));
}

} // namespace
