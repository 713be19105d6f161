// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/About.h"
#include "data/DataError.h"
#include "data/SetCommands.h"
#include "data/SetStore.h"

#include "CompleteFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

using namespace orvane::kestrum::tools;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

namespace fs = std::filesystem;

class SetStores : public ::testing::Test {
protected:
    /// A set that is only a folder with a text.
    fs::path publishText(const std::string& name, const std::string& text) const {
        StagedSet staged = store.stage();
        std::ofstream(staged.folder() / "about.json") << text;
        return store.publish(std::move(staged), name);
    }
    fs::path publishComplete(const std::string& name) const {
        StagedSet staged = store.stage();
        test::writeCompleteSet(staged.folder(), test::syntheticAbout());
        return store.publish(std::move(staged), name);
    }
    std::string linkText() const { return fs::read_symlink(store.link()).string(); }
    std::string told(const std::function<void(std::ostream&)>& work) const {
        std::ostringstream out;
        try {
            work(out);
        } catch (const DataError& error) {
            return std::string("refused: ") + error.what();
        }
        return out.str();
    }
    std::string use(const std::string& name) const {
        return told([&](std::ostream& out) { runUse(name, store, out); });
    }
    std::string list() const {
        return told([&](std::ostream& out) { runList(store, out); });
    }

    test::TemporaryFolder folder;
    const SetStore store{folder.file("root"), folder.file("packages")};
};

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

/// The set in use stays when its name is made anew, and the one before that goes.
TEST_F(SetStores, KeepTheUsedSetOfANameAndTheLatest) {
    const fs::path first = publishText("mine", "1");
    store.use(store.find("mine"));
    const fs::path second = publishText("mine", "2");
    EXPECT_TRUE(fs::exists(first));
    fs::last_write_time(second / "about.json",
                        fs::last_write_time(first / "about.json") + std::chrono::seconds(1));
    EXPECT_EQ(store.find("mine").folder, second);
    EXPECT_EQ(store.find(first.filename()).folder, first);
    const fs::path third = publishText("mine", "3");
    EXPECT_TRUE(fs::exists(first));
    EXPECT_FALSE(fs::exists(second));
    EXPECT_TRUE(fs::exists(third));
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

/// Asked by nobody in particular, whom root's folders let look but not write.
TEST_F(SetStores, SayThatRightsAreMissing) {
    constexpr uid_t nobody = 65534;
    publishText("mine", "1");
    fs::permissions(folder.path(), fs::perms(0755));
    fs::permissions(folder.file("root/sets"), fs::perms(0555));
    const pid_t child = fork();
    if (child == 0) {
        if (geteuid() == 0 && setuid(nobody) != 0)
            _exit(2);
        const std::string said = told([&](std::ostream&) { store.stage(); });
        _exit(said.find("run the same again as root") != std::string::npos ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    fs::permissions(folder.file("root/sets"), fs::perms(0755));
}

/// Kills a copy of this program at each of its system calls in turn while it switches from one set to another. After each
/// death the link leads to the one or the other, and both are whole; the last copy gets through.
TEST_F(SetStores, SurviveBeingKilledAtEverySystemCallOfASwitch) {
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "a traced copy of a sanitizer's process is not the program's own";
#else
    const std::string one = "sets/" + publishText("one", "1").filename().string();
    const std::string other = "sets/" + publishText("other", "2").filename().string();
    store.use(store.find("one"));
    const InstalledSet target = store.find("other");
    int calls = 0;
    bool finished = false;
    int deathsBefore = 0;
    while (!finished) {
        ASSERT_LT(++calls, 500);
        const pid_t child = fork();
        if (child == 0) {
            if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
                _exit(99);
            raise(SIGSTOP);
            store.use(target);
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        if (WIFEXITED(status))
            GTEST_SKIP() << "this system does not let a process trace its child";
        for (int call = 0; call < calls && !WIFEXITED(status); ++call) {
            ptrace(PTRACE_SYSCALL, child, nullptr, nullptr); // to the next entry into a call or exit from one
            ASSERT_EQ(waitpid(child, &status, 0), child);
        }
        finished = WIFEXITED(status);
        if (!finished) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
        }
        const std::string now = linkText(); // throws where there is no link
        ASSERT_TRUE(now == one || now == other) << now << " after " << calls << " stops";
        ASSERT_TRUE(fs::exists(store.link() / "about.json"));
        ASSERT_TRUE(fs::exists(folder.file("root/" + one + "/about.json")));
        deathsBefore += now == one ? 1 : 0;
        store.use(store.find("one"));
    }
    EXPECT_GT(deathsBefore, 10);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.file("root")), {}), 2)
        << "link and sets, and nothing else";
#endif
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
