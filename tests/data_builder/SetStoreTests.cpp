// SPDX-License-Identifier: GPL-3.0-or-later
#include "SetStoreFixture.h"

#include <algorithm>
#include <chrono>
#include <vector>

using namespace orvane::kestrum::tools;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

namespace fs = std::filesystem;

using test::SetStores;

TEST_F(SetStores, GiveSetsTheirNameAndTheDigitsOfTheirText) {
    const fs::path set = publishText("mine", "one");
    // Known: the SHA-256 of the three letters "one".
    EXPECT_EQ(set.filename(), "mine-7692c3ad");
    EXPECT_EQ(store.sets().size(), 1u);
    EXPECT_EQ(store.sets()[0].name, "mine");
    EXPECT_FALSE(store.sets()[0].used);
    EXPECT_EQ(fs::status(set).permissions(), fs::perms(0755));
    EXPECT_EQ(fs::status(set / "about.json").permissions(), fs::perms(0644));
}

TEST_F(SetStores, MakeTheLinkLeadToASetAndKeepTheOneBefore) {
    const fs::path one = publishText("one", "1");
    const fs::path other = publishText("other", "2");
    EXPECT_FALSE(store.linked());
    store.use(store.find("one"));
    EXPECT_EQ(linkText(), "sets/" + one.filename().string());
    store.use(store.find("other"));
    EXPECT_EQ(linkText(), "sets/" + other.filename().string());
    EXPECT_TRUE(fs::exists(one / "about.json"));
    EXPECT_TRUE(store.find("other").used);
    EXPECT_FALSE(store.find("one").used);
}

TEST_F(SetStores, TakeTheSetThatWasMadeLastForTheLatestOfItsName) {
    const fs::path first = publishText("mine", "1");
    fs::last_write_time(first / "about.json", fs::file_time_type::clock::now() + std::chrono::hours(1));
    const fs::path second = publishText("mine", "2"); // after the clock was put back
    EXPECT_EQ(store.find("mine").folder, second);
    EXPECT_EQ(store.find(first.filename()).folder, first);
    store.makeLatest(store.find(first.filename()));
    EXPECT_EQ(store.find("mine").folder, first);
    EXPECT_EQ(store.madeHere("mine").size(), 2u);
    fs::remove_all(second);
    EXPECT_THROW(store.makeLatest({"mine", second, false, false}), DataError);
}

TEST_F(SetStores, KeepAllSetsOfANameUntilOlderOnesAreToGo) {
    std::vector<fs::path> made;
    for (const char* const text : {"1", "2", "3", "4", "5"})
        made.push_back(publishText("mine", text));
    publishText("other", "1");
    EXPECT_TRUE(std::ranges::all_of(made, [](const fs::path& set) { return fs::exists(set); }));
    store.use(store.find(made[1].filename()));
    const std::vector<InstalledSet> gone = store.removeOlder("mine");
    ASSERT_EQ(gone.size(), 2u);
    EXPECT_EQ(gone[0].folder, made[2]);
    EXPECT_EQ(gone[1].folder, made[0]);
    EXPECT_EQ(store.madeHere("mine").size(), 3u) << "the latest two and the one in use";
    EXPECT_TRUE(store.find("other").folder.has_filename());
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.file("root/sets")), {}), 4);
    EXPECT_TRUE(store.removeOlder("mine").empty());
}

/// A room that was measured once cannot be made again in a moment.
TEST_F(SetStores, NeverRemoveARoomOfOnesOwn) {
    for (const char* const note : {"1", "2", "3", "4"})
        publishText("church", test::aboutWithARoomOfOnesOwn() + std::string(std::stoul(note), '\n'));
    EXPECT_EQ(store.madeHere("church").size(), 4u);
    EXPECT_TRUE(store.removeOlder("church").empty());
    EXPECT_EQ(store.madeHere("church").size(), 4u);
}

TEST_F(SetStores, LetNoKindOfSetTakeTheNameOfAnother) {
    publishText("church", test::aboutWithARoomOfOnesOwn());
    EXPECT_THAT(told([&](std::ostream&) { publishText("church", test::syntheticAbout()); }),
                AllOf(HasSubstr("refused: "),
                      HasSubstr("\"church\" belongs to a set with a room of one's own"),
                      HasSubstr("--name")));
    publishText("mine", test::syntheticAbout());
    EXPECT_THAT(told([&](std::ostream&) { publishText("mine", test::aboutWithARoomOfOnesOwn()); }),
                HasSubstr("\"mine\" belongs to a set without a room of one's own"));
    EXPECT_EQ(store.sets().size(), 2u);
    EXPECT_NO_THROW(store.requireKind("new", SetKind::ownRoom));
    EXPECT_NO_THROW(store.requireKind("church", SetKind::ownRoom));
}

/// The same text twice, as when a damaged set is made anew: the folder that is in use is not touched.
TEST_F(SetStores, GiveASecondSetOfTheSameTextAnotherFolder) {
    const fs::path first = publishText("mine", "1");
    store.use(store.find("mine"));
    const fs::path second = publishText("mine", "1");
    EXPECT_EQ(second.string(), first.string() + "-2");
    for (const InstalledSet& set : store.sets())
        EXPECT_EQ(set.name, "mine");
}

TEST_F(SetStores, FindPackagedSetsBehindTheirOwn) {
    fs::create_directories(folder.file("packages/kemar"));
    std::ofstream(folder.file("packages/kemar/about.json")) << "p";
    EXPECT_TRUE(store.find("kemar").packaged);
    store.use(store.find("kemar"));
    EXPECT_EQ(linkText(), folder.file("packages/kemar"));
    EXPECT_TRUE(store.find("kemar").used);
    publishText("kemar", "1");
    EXPECT_FALSE(store.find("kemar").packaged);
    EXPECT_TRUE(store.find(folder.file("packages/kemar")).packaged);
}

TEST_F(SetStores, SayWhichSetsThereAreWhenOneIsMissing) {
    EXPECT_THAT(use("none"), AllOf(HasSubstr("There is no set \"none\""), HasSubstr("kestrum data hrir")));
    publishText("mine", "1");
    EXPECT_THAT(use("none"), HasSubstr("(there is \"mine\")"));
}

TEST_F(SetStores, RefuseNamesThatLeaveTheFolderOrHideInIt) {
    for (const std::string name : {"", ".", "..", "../mine", "a/b", ".mine", "-x", "my head", "k\xc3\xb6pf"})
        EXPECT_THROW(requireSetName(name), DataError) << name;
    for (const std::string name : {"mine", "Kemar_2", "0.1-b", "a-b2c44305"})
        EXPECT_NO_THROW(requireSetName(name)) << name;
}

TEST_F(SetStores, KeepNamesThatLookLikeDigits) {
    EXPECT_EQ(store.find(publishText("a-b2c44305", "1").filename()).name, "a-b2c44305");
    EXPECT_EQ(store.find(publishText("take-2", "1").filename()).name, "take-2");
}

TEST_F(SetStores, RemoveWhatInterruptedMakersLeftAndLeaveOthersAlone) {
    fs::create_directories(folder.file("root/sets/.new-abandoned"));
    std::ofstream(folder.file("root/sets/.new-abandoned/OVNdata120.dat")) << "half";
    const StagedSet atWork = store.stage();
    EXPECT_FALSE(fs::exists(folder.file("root/sets/.new-abandoned")));
    {
        const StagedSet another = store.stage();
        EXPECT_TRUE(fs::exists(atWork.folder()));
        EXPECT_TRUE(store.sets().empty());
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.file("root/sets")), {}), 1);
}

TEST_F(SetStores, PutAPlainFolderAmongTheSetsWhenALinkTakesItsPlace) {
    publishText("mine", "1");
    fs::create_directories(store.link());
    std::ofstream(store.link() / "by-hand.txt") << "kept";
    store.use(store.find("mine"));
    EXPECT_EQ(linkText(), "sets/" + store.find("mine").folder.filename().string());
    EXPECT_EQ(test::readBytes(folder.file("root/sets/plain-folder/by-hand.txt")), "kept");
}

TEST_F(SetStores, LetTheUseOfADamagedSetNotHappen) {
    publishComplete("good");
    const fs::path bad = publishComplete("bad");
    EXPECT_THAT(use("good"), AllOf(HasSubstr("now reads \"good\""), HasSubstr("restart hosts")));
    EXPECT_THAT(use("good"), HasSubstr("already"));
    fs::resize_file(bad / "OVNdata511.dat", 1000);
    EXPECT_THAT(use("bad"), AllOf(HasSubstr("refused: "), HasSubstr("1 file missing or not sound")));
    EXPECT_TRUE(store.find("good").used);
}

/// What an older version made sounds as it did then: no reason to take it from anybody.
TEST_F(SetStores, LetASetOfOtherMethodsBeUsedWithANote) {
    const std::string rooms = R"("rooms": {"method": 1}})";
    publishComplete("older", R"({"method": 1, "origin": "a computed head", )" + rooms);
    static_assert(reverbMethodNumber != 1);
    EXPECT_THAT(use("older"), AllOf(HasSubstr("now reads \"older\""),
                                    HasSubstr("Note: the rooms were made by another version of this program"),
                                    HasSubstr("will do until")));
    EXPECT_TRUE(store.find("older").used);
    EXPECT_THAT(list(), AllOf(HasSubstr("sound, but the rooms were made by another version"),
                              Not(HasSubstr("FAULT"))));
}

TEST_F(SetStores, SayHowToGoBackToASetThatIsNotTheLatestOfItsName) {
    const fs::path first = publishComplete("mine");
    use("mine");
    publishComplete("mine");
    EXPECT_THAT(use("mine"), HasSubstr("kestrum data use " + first.string() + "\n"));
    const fs::path other = publishComplete("other");
    EXPECT_THAT(use("other"), HasSubstr("kestrum data use mine\n"));
}

/// Somebody's file would be gone.
TEST_F(SetStores, ReplaceNoPlainFileByTheLink) {
    publishText("mine", "1");
    std::ofstream(store.link()) << "kept";
    EXPECT_THAT(
        told([&](std::ostream&) { store.use(store.find("mine")); }),
        AllOf(HasSubstr("refused: "), HasSubstr("neither a link nor a folder"), HasSubstr("by hand")));
    EXPECT_EQ(test::readBytes(store.link().string()), "kept");
}

TEST_F(SetStores, LinkToNoSetThatHasJustBeenRemoved) {
    publishText("mine", "1");
    const InstalledSet set = store.find("mine");
    fs::remove_all(set.folder);
    EXPECT_THROW(store.use(set), DataError);
    EXPECT_FALSE(store.linked());
}

TEST_F(SetStores, AreListedWithWhatMatters) {
    EXPECT_THAT(list(), AllOf(HasSubstr("finds no data"), HasSubstr("after making one")));
    publishComplete("good");
    const fs::path bad = publishComplete("bad");
    fs::resize_file(bad / "OVNdata510.dat", 1000);
    use("good");
    const std::string text = list();
    EXPECT_THAT(text, AllOf(HasSubstr("* good"), HasSubstr("24 44.1 48"), HasSubstr("24 48 "),
                            HasSubstr("a computed head (none.sofa)"), HasSubstr("sound"),
                            HasSubstr("FAULT: OVNdata510.dat"), HasSubstr("marked *")));
    EXPECT_THAT(text, Not(HasSubstr("* bad")));
    fs::remove(store.link());
    fs::create_directory_symlink(folder.path(), store.link());
    EXPECT_THAT(list(), HasSubstr("reads none of them"));
}

} // namespace
