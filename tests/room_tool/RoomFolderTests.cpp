// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataError.h"
#include "data/sets/About.h"
#include "data/sets/FolderCheck.h"
#include "room/FolderInTheMaking.h"
#include "room/RoomFolder.h"

#include "Refusal.h"
#include "SoundFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>

using namespace orvane::kestrum::tools;
using ::testing::AllOf;
using ::testing::HasSubstr;

namespace {

constexpr int mixRoom = 15;

ReverbEntry tone(double level) {
    const std::size_t length = frameCountAt(roomDescription(mixRoom), 48000);
    ReverbEntry entry{mixRoom, {Samples(length), Samples(length)}};
    for (std::size_t frame = 0; frame < length; ++frame)
        for (std::size_t ear = 0; ear < 2; ++ear)
            entry.ears[ear][frame] =
                level * std::cos((0.05 + 0.02 * static_cast<double>(ear)) * static_cast<double>(frame));
    return entry;
}

std::string refusalOf(const std::string& data, const std::string& out) {
    try {
        requireSource(data);
        requireFree(out);
    } catch (const DataError& error) {
        return error.what();
    }
    return "nothing refused";
}

std::ptrdiff_t entryCount(const std::filesystem::path& folder) {
    const std::filesystem::directory_iterator entries(folder);
    return std::distance(begin(entries), end(entries));
}

bool allSound(const std::filesystem::path& folder) {
    const auto verdicts = checkDataFolder(folder);
    return std::ranges::all_of(verdicts, [](const FileVerdict& verdict) { return verdict.sound; });
}

TEST(RoomFolders, AreCopiesButForOneRoomAtEveryRate) {
    const test::TemporaryFolder folder;
    const std::string out = folder.file("deep/own/");
    const std::string before = sha256OfFile(test::soundFolder() + "/OVNdata511.dat");
    writeRoomFolder(test::soundFolder(), out, tone(0.5), {{"scene", "Mix Room"}});
    EXPECT_EQ(sha256OfFile(test::soundFolder() + "/OVNdata511.dat"), before);
    for (const char* name : {"OVNdata120.dat", "OVNdata121.dat", "OVNdata122.dat", "note.txt"})
        EXPECT_EQ(test::readBytes(out + name), test::readBytes(test::soundFolder() + "/" + name)) << name;
    for (const ReverbFile& file : reverbFiles) {
        const ReverbSet old = readReverbSet(file, test::soundFolder());
        const ReverbSet made = readReverbSet(file, out);
        for (std::size_t index = 0; index < old.entries.size(); ++index)
            EXPECT_EQ(made.entries[index].ears == old.entries[index].ears, old.entries[index].room != mixRoom)
                << file.name << ", room " << old.entries[index].room;
    }
    EXPECT_TRUE(allSound(out));
    EXPECT_TRUE(allSound(test::soundFolder()));
}

/// A user's room may be drier or louder than the program's own; the folder says so and "check" believes it.
TEST(RoomFolders, MayHoldARoomThatIsSofterThanTheProgramsOwn) {
    const test::TemporaryFolder folder;
    const ReverbEntry soft = tone(0.2); // -14 dB
    writeRoomFolder(test::soundFolder(), folder.file("soft"), soft, {});
    EXPECT_TRUE(allSound(folder.file("soft")));
    test::writeBytes(folder.file("soft/about.json"),
                     test::readBytes(test::soundFolder() + "/about.json")); // which knows nothing of it
    EXPECT_FALSE(allSound(folder.file("soft")));
}

TEST(RoomFolders, KnowTheirOwnRooms) {
    const test::TemporaryFolder folder;
    writeRoomFolder(test::soundFolder(), folder.file("one"), tone(0.5), {{"scene", "Mix Room"}});
    EXPECT_EQ(ownRooms(folder.file("one")), std::vector<int>{mixRoom});
    EXPECT_THAT(test::readBytes(folder.file("one/about.json")), HasSubstr("\"scene\": \"Mix Room\""));
    writeRoomFolder(folder.file("one"), folder.file("two"), tone(0.6), {{"scene", "again"}});
    EXPECT_EQ(ownRooms(folder.file("two")), std::vector<int>{mixRoom});
    EXPECT_TRUE(ownRooms(test::soundFolder()).empty());
    test::writeBytes(folder.file("one/about.json"), aboutWithReverb(folder.file("one")));
    EXPECT_TRUE(ownRooms(folder.file("one")).empty()) << "rooms that are made anew are the program's";
}

TEST(RoomFolders, AreRefusedWhereSomethingLiesAlready) {
    const test::TemporaryFolder folder;
    test::writeBytes(folder.file("mine"), "a file");
    EXPECT_THAT(refusalOf(test::soundFolder(), folder.file("mine")), HasSubstr("holds something already"));
    EXPECT_THAT(refusalOf(test::soundFolder(), folder.path()), HasSubstr("name a new folder"));
    EXPECT_EQ(refusalOf(test::soundFolder(), folder.file("new")), "nothing refused");
    std::filesystem::create_directory(folder.file("empty"));
    EXPECT_EQ(refusalOf(test::soundFolder(), folder.file("empty")), "nothing refused");
    writeRoomFolder(test::soundFolder(), folder.file("empty"), tone(0.5), {});
    EXPECT_TRUE(std::filesystem::exists(folder.file("empty/OVNdata511.dat")));
}

TEST(RoomFolders, AreMadeOfSoundOnesOnly) {
    const test::TemporaryFolder folder;
    EXPECT_THAT(refusalOf("/none", folder.file("new")), HasSubstr("name a data folder with --data"));
    EXPECT_THAT(refusalOf(folder.path(), folder.file("new")), HasSubstr("OVNdata120.dat\" cannot serve"));
}

TEST(RoomFolders, LeaveNothingBehindWhenTheyCannotBeMade) {
    EXPECT_THROW(writeRoomFolder(test::soundFolder(), "/proc/none", tone(0.5), {}), DataError);
    const test::TemporaryFolder folder;
    test::writeBytes(folder.file("taken"), "a file"); // came into being meanwhile
    EXPECT_THROW(writeRoomFolder(test::soundFolder(), folder.file("taken"), tone(0.5), {}), DataError);
    EXPECT_EQ(test::readBytes(folder.file("taken")), "a file");
    EXPECT_EQ(entryCount(folder.path()), 1);
}

/// 60 dB below a peak of 1 no calibration puts a room.
TEST(RoomFolders, ThatWouldNotBeSoundAreNotMade) {
    const test::TemporaryFolder folder;
    EXPECT_THAT(
        test::refusal([&] { writeRoomFolder(test::soundFolder(), folder.file("made"), tone(0.001), {}); }),
        AllOf(HasSubstr("Nothing is made"), HasSubstr("room 15 has its peak at")));
    EXPECT_EQ(entryCount(folder.path()), 0);
}

/// Who changes the plug-in's link meanwhile does not change what is read.
TEST(RoomFolders, AreMadeOfTheFolderThatALinkLedTo) {
    const test::TemporaryFolder folder;
    std::filesystem::create_symlink(test::soundFolder(), folder.file("data"));
    EXPECT_EQ(requireSource(folder.file("data")), std::filesystem::canonical(test::soundFolder()));
}

TEST(FoldersInTheMaking, AreGoneWhenTheProgramIsEndedMeanwhile) {
    const test::TemporaryFolder folder;
    const auto interrupted = [&](int number) {
        FolderInTheMaking making(folder.file("made"));
        std::ofstream(making.folder() / "OVNdata510.dat") << "half";
        raise(number);
        making.finish();
    };
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        EXPECT_EXIT(interrupted(number), ::testing::KilledBySignal(number), "");
        EXPECT_EQ(entryCount(folder.path()), 0) << number;
    }
}

/// As under nohup.
TEST(FoldersInTheMaking, AreFinishedWhereASignalIsIgnored) {
    const test::TemporaryFolder folder;
    const auto before = std::signal(SIGHUP, SIG_IGN);
    FolderInTheMaking making(folder.file("made"));
    raise(SIGHUP);
    making.finish();
    std::signal(SIGHUP, before);
    EXPECT_TRUE(std::filesystem::exists(folder.file("made")));
}

} // namespace
