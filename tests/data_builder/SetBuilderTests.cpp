// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataError.h"
#include "data/head/SofaReader.h"
#include "data/sets/About.h"
#include "data/sets/FolderCheck.h"
#include "data/sets/SetBuilder.h"

#include "CompleteFolder.h"
#include "SofaFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

using namespace orvane::kestrum::tools;
using ::testing::AllOf;
using ::testing::HasSubstr;

namespace {

namespace fs = std::filesystem;

/// No file of this process grows beyond the limit while this lives, as on a disk that is full.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) : before(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &unlimited);
        const rlimit limited{bytes, unlimited.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &unlimited);
        std::signal(SIGXFSZ, before);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit unlimited{};
    void (*before)(int);
};

/// A machine on which a set for any headphones was made from a small measurement. Its content is synthetic; its text is
/// what the measurement's would be.
class SetsWithHeadphones : public ::testing::Test {
protected:
    void SetUp() override {
        test::writeSofa(test::sofaOf({.tapCount = 64}, test::rings(90, 0)), folder.file("mine.sofa"));
        writeEq("Preamp: -3 dB\nFilter 1: ON PK Fc 2000 Hz Gain 3 dB Q 1\n");
        StagedSet staged = store.stage();
        test::writeCompleteSet(staged.folder(), plainAbout());
        store.publish(std::move(staged), "plain");
        store.use(store.find("plain"));
    }
    void writeEq(const std::string& text) const { std::ofstream(folder.file("mine.txt")) << text; }
    std::string plainAbout() const {
        const std::string sofa = folder.file("mine.sofa");
        return aboutWithRooms(aboutText(sofa, readSofa(sofa).origin));
    }
    std::string make(const std::string& name, const std::string& report = {}) const {
        std::ostringstream out;
        HrirRequest request;
        request.sofa = folder.file("mine.sofa");
        request.name = name;
        request.headphoneEq = folder.file("mine.txt");
        request.report = report;
        try {
            runSet(request, store, out);
        } catch (const DataError& error) {
            return std::string("refused: ") + error.what();
        }
        return out.str();
    }
    std::size_t folderCount() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder.file("root/sets")), {}));
    }

    test::TemporaryFolder folder;
    const SetStore store{folder.file("root"), folder.file("packages")};
};

TEST_F(SetsWithHeadphones, AreMadeFromTheSetForAnyHeadphonesWhereThereIsOne) {
    EXPECT_THAT(make("closed"),
                AllOf(HasSubstr("those of the set \"plain\""), HasSubstr("Headphones: mine.txt"),
                      HasSubstr("kestrum data use closed")));
    const InstalledSet set = store.find("closed");
    for (const FileVerdict& verdict : checkDataFolder(set.folder))
        EXPECT_TRUE(verdict.sound) << verdict.name << ": " << verdict.finding;
    EXPECT_FALSE(set.used);
    EXPECT_TRUE(store.find("plain").used);
    EXPECT_THAT(make("closed"), HasSubstr("is up to date"));
    EXPECT_EQ(folderCount(), 2u);
}

/// Null test, equal bits.
TEST_F(SetsWithHeadphones, AreTheSameBytesUnderEveryName) {
    make("one");
    make("other");
    for (const auto& entry : fs::directory_iterator(store.find("one").folder))
        EXPECT_TRUE(test::readBytes(entry.path()) ==
                    test::readBytes(store.find("other").folder / entry.path().filename()))
            << entry.path();
}

TEST_F(SetsWithHeadphones, AreMadeAnewWithAnotherCorrectionAndKeepForeignFiles) {
    make("closed");
    const fs::path first = store.find("closed").folder;
    std::ofstream(first / "notes.txt") << "mine";
    store.use(store.find("closed"));
    writeEq("Preamp: -4 dB\n");
    make("closed");
    const fs::path second = store.find("closed").folder;
    EXPECT_NE(first, second);
    EXPECT_EQ(test::readBytes(second / "notes.txt"), "mine");
    EXPECT_TRUE(store.find(first.filename()).used);
}

/// One correction, another, and the first again: what was asked for last is what "use" takes.
TEST_F(SetsWithHeadphones, AreTheLatestAgainWhenTheyWereMadeBefore) {
    const std::string one = "Preamp: -3 dB\n";
    const std::string other = "Preamp: -4 dB\n";
    writeEq(one);
    make("mine");
    const fs::path first = store.find("mine").folder;
    store.use(store.find("mine"));
    writeEq(other);
    make("mine");
    store.use(store.find("mine"));
    EXPECT_NE(store.find("mine").folder, first);
    writeEq(one);
    EXPECT_THAT(make("mine"), AllOf(HasSubstr("was made like this before"), HasSubstr(first.string()),
                                    HasSubstr("kestrum data use mine")));
    EXPECT_EQ(store.find("mine").folder, first);
    EXPECT_FALSE(store.find("mine").used);
    store.use(store.find("mine"));
    EXPECT_EQ(test::readBytes(store.link() / "headphones.txt"), one);
    EXPECT_THAT(make("mine"), HasSubstr("is up to date"));
    EXPECT_EQ(folderCount(), 3u);
}

TEST_F(SetsWithHeadphones, SayWhichOlderOnesOfTheirNameAreRemoved) {
    std::string told;
    std::vector<fs::path> made;
    for (const char* const eq : {"Preamp: -1 dB\n", "Preamp: -2 dB\n", "Preamp: -3 dB\n"}) {
        writeEq(eq);
        told = make("mine");
        made.push_back(store.find("mine").folder);
    }
    EXPECT_THAT(told, HasSubstr("Removed \"" + made[0].string() + "\": the latest two sets of a name"));
    EXPECT_FALSE(fs::exists(made[0]));
    EXPECT_TRUE(fs::exists(made[1]) && fs::exists(made[2]));
    EXPECT_TRUE(store.find("plain").used);
}

/// A church that was measured once, and a head by the same name.
TEST_F(SetsWithHeadphones, DoNotTakeTheNameOfARoomOfOnesOwn) {
    StagedSet staged = store.stage();
    writeAbout(plainAbout(), staged.folder());
    writeAbout(aboutWithOwnRoom(staged.folder(), 19, {{"scene", "a church"}}), staged.folder());
    const fs::path church = store.publish(std::move(staged), "church");
    EXPECT_THAT(make("church"), HasSubstr("refused: The name \"church\" belongs to a set with a room"));
    EXPECT_TRUE(fs::exists(church));
    EXPECT_EQ(folderCount(), 2u);
}

/// Half a minute's work would be for nothing.
TEST_F(SetsWithHeadphones, AreNotBegunWithAReportThatNobodyCanDraw) {
    const std::string path = std::getenv("PATH");
    setenv("PATH", folder.path().c_str(), 1);
    const std::string told = make("closed", folder.file("report"));
    setenv("PATH", path.c_str(), 1);
    EXPECT_THAT(told, AllOf(HasSubstr("refused: "), HasSubstr("install the package gnuplot-nox")));
    EXPECT_EQ(told.find("Source:"), std::string::npos);
    EXPECT_FALSE(fs::exists(folder.file("report")));
}

TEST_F(SetsWithHeadphones, AreMadeAnewWhenDamaged) {
    make("closed");
    fs::resize_file(store.find("closed").folder / "OVNdata121.dat", 1000);
    make("closed");
    for (const FileVerdict& verdict : checkDataFolder(store.find("closed").folder))
        EXPECT_TRUE(verdict.sound) << verdict.name;
}

/// A disk that is full after a megabyte, after ten, and so on: at another file each time.
TEST_F(SetsWithHeadphones, LeaveTheMachineAsItWasWhenTheDiskIsFull) {
    for (const rlim_t bytes : {0u, 100u, 1500000u, 2700000u, 13000000u, 24000000u}) {
        const FullDisk full(bytes);
        EXPECT_THAT(make("closed"), AllOf(HasSubstr("refused: "), HasSubstr("room"))) << bytes;
        EXPECT_EQ(folderCount(), 1u) << bytes;
        EXPECT_TRUE(store.find("plain").used);
    }
    EXPECT_THAT(make("closed"), HasSubstr("complete and sound"));
}

TEST_F(SetsWithHeadphones, AreNotBegunForInputThatCannotServe) {
    writeEq("Filter 1: ON PK Fc Hz");
    EXPECT_THAT(make("closed"), AllOf(HasSubstr("refused: "), HasSubstr("mine.txt"), HasSubstr("line 1")));
    EXPECT_THAT(make("../closed"), HasSubstr("cannot name a set"));
    EXPECT_EQ(folderCount(), 1u);
}

/// Without a set to start from the head is built, and a measurement of so few directions is refused there.
TEST_F(SetsWithHeadphones, AreBuiltFromTheMeasurementWhereThereIsNone) {
    fs::resize_file(store.find("plain").folder / "OVNdata121.dat", 1000);
    EXPECT_THAT(make("closed"), HasSubstr("refused: The set "));
    EXPECT_EQ(folderCount(), 1u);
}

} // namespace
