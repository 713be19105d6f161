// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataCommands.h"
#include "data/DataError.h"
#include "data/head/SofaReader.h"
#include "data/rooms/ReverbCommand.h"
#include "data/sets/About.h"

#include "SyntheticRooms.h"

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>

using namespace orvane::kestrum::tools;
using ::testing::AllOf;
using ::testing::HasSubstr;

namespace {

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// What the program would say, or the sentence it would fail with.
std::string run(const std::string& arguments) {
    std::ostringstream out;
    CLI::App program("", "kestrum");
    addDataCommands(program, out);
    try {
        program.parse(arguments);
    } catch (const DataError& error) {
        return std::string("refused: ") + error.what();
    }
    return out.str();
}

std::string helpOf(const std::string& command) {
    CLI::App program("", "kestrum");
    addDataCommands(program);
    try {
        program.parse("data " + command + " --help");
    } catch (const CLI::CallForHelp& help) {
        std::ostringstream text;
        program.exit(help, text, text);
        return text.str();
    }
    return {};
}

TEST(Documentation, ShowsTheHelpOfTheDataCommands) {
    const std::string page = contentOf(std::filesystem::path(KESTRUM_DOCS) / "tools" / "kestrum-data.md");
    for (const std::string command : {"hrir", "use", "list", "reverb", "check", "decay-table", "report"}) {
        const std::string help = helpOf(command);
        ASSERT_THAT(help, HasSubstr("Usage: kestrum data " + command));
        EXPECT_THAT(page, HasSubstr("```text\n" + help + "```"));
    }
}

TEST(HrirCommand, RefusesAMissingFileWithTheRemedy) {
    EXPECT_THAT(run("data hrir --sofa /none.sofa --out /tmp/none"),
                AllOf(HasSubstr("refused: \"/none.sofa\" does not exist"), HasSubstr("libmysofa1")));
}

TEST(HrirCommand, RefusesAFileOfAnotherKind) {
    const test::TemporaryFolder folder;
    std::ofstream(folder.file("noise.sofa")) << "no measurement at all";
    EXPECT_THAT(run("data hrir --out /tmp/none --sofa " + folder.file("noise.sofa")),
                HasSubstr("cannot be read as a SOFA file"));
}

TEST(HrirCommand, RefusesToWorkForNoFolder) {
    EXPECT_THAT(run("data hrir"), HasSubstr("name a folder with --out, or a complete set with --name"));
    EXPECT_THAT(run("data hrir --out /proc/none"), HasSubstr("cannot be made"));
}

TEST(HrirCommand, RefusesToMakeOneThingInTwoPlacesOrHeadphonesWithoutRooms) {
    EXPECT_THAT(run("data hrir --out /tmp/none --name mine"), HasSubstr("Both --out and --name are given"));
    EXPECT_THAT(run("data hrir --out /tmp/none --headphone-eq eq.txt"),
                HasSubstr("give it a name with --name"));
}

/// The rooms would be made for the head's ears and the headphones together, and filtered once more by nobody.
TEST(ReverbCommand, RefusesAHeadWithHeadphonesFoldedIn) {
    const test::TemporaryFolder folder;
    std::ofstream(folder.file("about.json")) << R"({"method": 1, "headphones": {"file": "eq.txt"}})";
    EXPECT_THAT(
        run("data reverb " + folder.path()),
        AllOf(HasSubstr("refused: "), HasSubstr("headphones folded in"), HasSubstr("--headphone-eq")));
}

TEST(HrirCommand, TellsTheOriginWithoutMakingAnything) {
    EXPECT_THAT(run("data hrir --about"),
                AllOf(HasSubstr("MIT_KEMAR_normal_pinna.sofa"), HasSubstr("\"sha256\"")));
    EXPECT_THAT(run("data hrir --about --name mine"), AllOf(HasSubstr("\"sha256\""), HasSubstr("\"rooms\"")));
}

TEST(ReverbCommand, RefusesAFolderWithoutAHeadWithTheRemedy) {
    const test::TemporaryFolder folder;
    EXPECT_THAT(run("data reverb " + folder.path()),
                AllOf(HasSubstr("refused: "), HasSubstr("about.json"), HasSubstr("kestrum data hrir")));
    std::ofstream(folder.file("about.json")) << R"({"method": 1})";
    EXPECT_THAT(run("data reverb " + folder.path()),
                AllOf(HasSubstr("refused: "), HasSubstr("OVNdata121.dat"), HasSubstr("kestrum data hrir")));
    EXPECT_THAT(run("data reverb /none"), HasSubstr("is no folder"));
}

/// One sample that is no number would be in every room.
TEST(ReverbCommand, RefusesADamagedHeadWithTheRemedyAndKeepsTheRooms) {
    const test::TemporaryFolder folder;
    std::ofstream(folder.file("about.json")) << R"({"method": 1})";
    std::ofstream(folder.file("OVNdata511.dat")) << "good rooms";
    ResponseSet set = test::syntheticResponses();
    set.responses[1000][1][5] = std::numeric_limits<double>::quiet_NaN();
    writeResponseSet(set, folder.path());
    EXPECT_THAT(run("data reverb " + folder.path()),
                AllOf(HasSubstr("refused: "), HasSubstr("OVNdata121.dat"),
                      HasSubstr("response 1000 holds samples that are no numbers"),
                      HasSubstr("kestrum data hrir")));
    EXPECT_EQ(contentOf(folder.file("OVNdata511.dat")), "good rooms");
}

/// The second file cannot be replaced: what there is afterwards is of two makings.
TEST(ReverbCommand, InterruptedLeavesNoRoomsThatTheFolderVouchesFor) {
    const test::TemporaryFolder folder;
    std::ofstream(folder.file("about.json"))
        << R"({"method": 1, "rooms": {"method": 1}, "origin": "a head"})";
    std::filesystem::create_directories(folder.file("OVNdata511.dat/in the way"));
    const std::string about = aboutWithReverb(folder.path());
    const auto rooms = test::toneRooms(reverbFiles[1]).entries;
    EXPECT_THROW(writeRooms(rooms, about, folder.path()), DataError);
    EXPECT_TRUE(std::filesystem::exists(folder.file("OVNdata510.dat")));
    EXPECT_EQ(methodsOf(folder.path()).rooms, 0);
    EXPECT_EQ(methodsOf(folder.path()).responses, 1);
    EXPECT_THAT(contentOf(folder.file("about.json")), HasSubstr("a head"));
    std::filesystem::remove_all(folder.file("OVNdata511.dat"));
    writeRooms(rooms, about, folder.path());
    EXPECT_EQ(contentOf(folder.file("about.json")), about);
}

/// A set that somebody hands on: the terminal would obey what stands behind an escape character.
TEST(AboutFiles, TellNothingThatSteersATerminal) {
    const test::TemporaryFolder folder;
    std::ofstream(folder.file("about.json"))
        << R"({"method": 1, "origin": "a \u001b]0;head\u0007", "input": {"file": "\u009bm\nhead\u007f.sofa"},)"
        << R"( "headphones": {"file": "\u001b[2Jphones.txt", "correction": "\r\u0000"}})";
    const AboutSource source = aboutSource(folder.path());
    EXPECT_EQ(source.origin, "a ?]0;head?");
    EXPECT_EQ(source.inputFile, "\xC2\x9Bm?head?.sofa"); // two bytes, and no control character in UTF-8
    const auto headphones = aboutHeadphones(folder.path());
    ASSERT_TRUE(headphones);
    EXPECT_EQ(headphones->fileName, "?[2Jphones.txt");
    EXPECT_EQ(headphones->description, "??");
}

TEST(AboutFiles, AreGoneOnceTheirHeadIsMadeAnew) {
    const test::TemporaryFolder folder;
    std::ofstream(folder.file("about.json")) << R"({"method": 1})";
    withdrawAbout(folder.path());
    EXPECT_FALSE(std::filesystem::exists(folder.file("about.json")));
    EXPECT_NO_THROW(withdrawAbout(folder.path()));
}

TEST(ReverbCommand, TellsWhatASetWouldBeMadeOfWithoutMakingAnything) {
    const test::TemporaryFolder folder;
    std::ofstream(folder.file("about.json")) << R"({"method": 1, "origin": "a head"})";
    EXPECT_THAT(run("data reverb --about " + folder.path()),
                AllOf(HasSubstr("\"a head\""), HasSubstr("\"rooms\""), HasSubstr("\"seed\"")));
    EXPECT_FALSE(std::filesystem::exists(folder.file("OVNdata511.dat")));
}

TEST(CheckCommand, NamesEveryMissingFileAndTheRemedy) {
    const test::TemporaryFolder folder;
    EXPECT_THAT(run("data check " + folder.path()),
                AllOf(HasSubstr("refused: "), HasSubstr("7 files missing or not sound"),
                      HasSubstr("kestrum data hrir")));
    EXPECT_THAT(run("data check /none"), HasSubstr("is no folder"));
}

TEST(ReportCommand, RefusesWhatIsNoFolderOrHoldsNoHead) {
    const test::TemporaryFolder folder;
    EXPECT_THAT(run("data report /none " + folder.path()),
                AllOf(HasSubstr("refused: \"/none\" is no folder"), HasSubstr("kestrum doctor")));
    EXPECT_THAT(run("data report " + folder.path() + " " + folder.file("out")),
                HasSubstr("holds no responses of a head"));
}

TEST(DecayTableCommand, WritesTheTableOrItsSource) {
    const test::TemporaryFolder folder;
    const std::string table = folder.file("table");
    const std::string source = folder.file("source");
    EXPECT_THAT(run("data decay-table " + table), HasSubstr("Wrote 100 decay curves of 100 gains"));
    EXPECT_EQ(std::filesystem::file_size(table), 40000u);
    run("data decay-table --source " + source);
    EXPECT_THAT(contentOf(source), HasSubstr("// row 99\n"));
}

TEST(DecayTableCommand, RefusesAPlaceThatCannotBeWritten) {
    EXPECT_THAT(run("data decay-table /proc/none"),
                HasSubstr("refused: \"/proc/none\" cannot be written: give a file"));
}

/// Known: the digest of the three letters "abc", from FIPS 180-4.
TEST(Digests, AreSha256) {
    const test::TemporaryFolder folder;
    std::ofstream(folder.file("abc")) << "abc";
    EXPECT_EQ(sha256OfFile(folder.file("abc")),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_THROW(sha256OfFile(folder.file("none")), DataError);
}

/// Known of the default set, from its own documents.
TEST(SofaFiles, AreReadAsTheyWereMeasured) {
    const MeasuredSet set = readSofa(defaultSofaFile);
    EXPECT_EQ(set.measurements.size(), 710u);
    EXPECT_EQ(set.tapCount, 512u);
    EXPECT_EQ(set.sampleRate, 44100);
    EXPECT_NEAR(set.distanceMetres, 1.4, 1e-6);
    EXPECT_THAT(set.origin.citation, HasSubstr("Gardner"));
    // The file's azimuth counts to the left: the second direction, 6.43 degrees there, is one to the left
    // here.
    EXPECT_NEAR(azimuthDegrees(set.measurements[1].direction), -6, 1);
}

/// Property: a file cut anywhere is refused, not believed and not crashed on.
TEST(SofaFiles, CutShortAreRefused) {
    const test::TemporaryFolder folder;
    const std::string whole = contentOf(defaultSofaFile);
    for (const std::size_t size : {std::size_t{0}, std::size_t{100}, std::size_t{5000}}) {
        std::ofstream(folder.file("cut.sofa"), std::ios::binary) << whole.substr(0, size);
        EXPECT_THROW(readSofa(folder.file("cut.sofa")), DataError) << size;
    }
}

} // namespace
