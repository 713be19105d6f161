// SPDX-License-Identifier: GPL-3.0-or-later
// The sets of a machine when programs are killed, meet each other, or lack rights.
#include "SetStoreFixture.h"

#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <vector>

using namespace orvane::kestrum::tools;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

namespace fs = std::filesystem;

using test::SetStores;

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif

/// Works in a copy of this program.
/// @return its process; its exit code is that of the work, or 99 for an exception.
pid_t forked(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child != 0)
        return child;
    try {
        _exit(work());
    } catch (...) {
        _exit(99);
    }
}

int exitCodeOf(pid_t child) {
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

enum class Fate { killed, finished, untraceable };

/// Works in a copy of this program, which is killed at its n-th entry into a system call or exit from one.
Fate killedAt(int stops, const std::function<void()>& work) {
    const pid_t child = forked([&] {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
            return 98;
        raise(SIGSTOP);
        work();
        return 0;
    });
    int status = 0;
    if (waitpid(child, &status, 0) != child || WIFEXITED(status))
        return Fate::untraceable;
    for (int stop = 0; stop < stops && !WIFEXITED(status); ++stop) {
        ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        waitpid(child, &status, 0);
    }
    if (WIFEXITED(status))
        return Fate::finished;
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    return Fate::killed;
}

/// Kills copies of this program at each of their system calls in turn, until one gets through.
/// @param look is asked after each death, and has to bring everything back to how it was.
void killAtEveryCall(const std::function<void()>& work, const std::function<void(int)>& look) {
    if (sanitized)
        GTEST_SKIP() << "a traced copy of a sanitizer's process is not the program's own";
    constexpr int most = 2000;
    for (int stops = 1; stops < most; ++stops) {
        const Fate fate = killedAt(stops, work);
        if (fate == Fate::untraceable)
            GTEST_SKIP() << "this system does not let a process trace its child";
        look(stops);
        if (fate == Fate::finished || ::testing::Test::HasFatalFailure())
            return;
    }
    FAIL() << "no copy got through";
}

std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    return names;
}

/// After each death the link leads to the one or the other, and both are whole.
TEST_F(SetStores, SurviveBeingKilledAtEverySystemCallOfASwitch) {
    const std::string one = "sets/" + publishText("one", "1").filename().string();
    const std::string other = "sets/" + publishText("other", "2").filename().string();
    store.use(store.find("one"));
    const InstalledSet target = store.find("other");
    int deathsBefore = 0;
    const auto look = [&](int stops) {
        const std::string now = linkText(); // throws where there is no link
        ASSERT_TRUE(now == one || now == other) << now << " after " << stops << " stops";
        ASSERT_TRUE(fs::exists(store.link() / "about.json"));
        ASSERT_TRUE(fs::exists(folder.file("root/" + one + "/about.json")));
        deathsBefore += now == one ? 1 : 0;
        store.use(store.find("one"));
    };
    killAtEveryCall([&] { store.use(target); }, look);
    if (IsSkipped() || HasFailure())
        return;
    EXPECT_GT(deathsBefore, 10);
    EXPECT_EQ(namesIn(folder.file("root")).size(), 2u) << "link and sets, and nothing else";
    EXPECT_EQ(namesIn(folder.file("root/sets")).size(), 2u) << "the two sets, and nothing else";
}

/// A plain folder in the link's place is there or among the sets, and no stray link is listed.
TEST_F(SetStores, LoseNoPlainFolderWhenKilledAtAnySystemCallOfTheFirstSwitch) {
    const fs::path set = publishText("mine", "1");
    const InstalledSet target = store.find("mine");
    const auto putPlainFolder = [&] {
        fs::create_directories(store.link());
        std::ofstream(store.link() / "by-hand.txt") << "kept";
    };
    putPlainFolder();
    const auto look = [&](int stops) {
        for (const InstalledSet& listed : store.sets())
            ASSERT_TRUE(listed.name == "mine" || listed.name == "plain-folder") << listed.name;
        ASSERT_TRUE(fs::is_directory(store.link())) << stops;
        store.use(target); // finishes what was begun
        ASSERT_EQ(linkText(), "sets/" + set.filename().string());
        ASSERT_EQ(test::readBytes(folder.file("root/sets/plain-folder/by-hand.txt")), "kept") << stops;
        ASSERT_EQ(namesIn(folder.file("root/sets")).size(), 2u) << stops;
        fs::remove(store.link());
        fs::remove_all(folder.file("root/sets/plain-folder"));
        putPlainFolder();
    };
    killAtEveryCall([&] { store.use(target); }, look);
}

/// A set that is half removed has no name, and the next maker takes it away.
TEST_F(SetStores, LeaveNoHalfSetWhenKilledAtAnySystemCallOfARemoval) {
    const auto makeThree = [&] {
        for (const char* const text : {"1", "2", "3"})
            publishText("mine", text);
    };
    makeThree();
    const auto look = [&](int stops) {
        for (const InstalledSet& set : store.sets())
            ASSERT_TRUE(fs::exists(set.folder / "about.json")) << stops;
        ASSERT_GE(store.sets().size(), 2u);
        store.stage();
        ASSERT_EQ(namesIn(folder.file("root/sets")).size(), store.sets().size()) << stops;
        if (store.sets().size() == 3)
            return;
        fs::remove_all(folder.file("root/sets"));
        makeThree();
    };
    killAtEveryCall([&] { store.removeOlder("mine"); }, look);
}

/// Property: whatever the order in which several programs make, choose and remove sets, each gets its work done, and the link
/// leads to a set. Only a set that another has just removed may be refused.
TEST_F(SetStores, MayBeWorkedOnBySeveralProgramsAtATime) {
    publishText("mine", "0");
    store.use(store.find("mine"));
    constexpr int rounds = 25;
    const auto work = [&](const std::string& who) {
        for (int round = 0; round < rounds; ++round) {
            const fs::path made = publishText("mine", who + std::to_string(round));
            try {
                store.use({"mine", made, false, false});
            } catch (const DataError&) {
                if (fs::exists(made))
                    return 1;
            }
            store.removeOlder("mine");
            if (!fs::is_directory(*store.linked()) && !fs::exists(store.link()))
                return 2;
        }
        return 0;
    };
    std::vector<pid_t> children;
    for (const char* const who : {"a", "b", "c"})
        children.push_back(forked([&] { return work(who); }));
    for (const pid_t child : children)
        EXPECT_EQ(exitCodeOf(child), 0);
    EXPECT_TRUE(fs::exists(store.link() / "about.json"));
    store.removeOlder("mine");
    EXPECT_LE(store.sets().size(), 3u);
    EXPECT_EQ(namesIn(folder.file("root/sets")).size(), store.sets().size());
}

/// Known: a host runs as anybody, and root's umask may be anything.
TEST_F(SetStores, MayBeReadByEverybodyWhateverTheUmask) {
    const SetStore deep(folder.file("opt/maker/product"), folder.file("packages"));
    const mode_t before = umask(077);
    StagedSet staged = deep.stage();
    std::ofstream(staged.folder() / "about.json") << "1";
    const fs::path set = deep.publish(std::move(staged), "mine");
    deep.use(deep.find("mine"));
    umask(before);
    for (const std::string made : {"opt", "opt/maker", "opt/maker/product", "opt/maker/product/sets"})
        EXPECT_EQ(fs::status(folder.file(made)).permissions(), fs::perms(0755)) << made;
    EXPECT_EQ(fs::status(set).permissions(), fs::perms(0755));
    EXPECT_EQ(fs::status(set / "about.json").permissions(), fs::perms(0644));
}

/// Asked by nobody in particular, whom root's folders let look but not write.
TEST_F(SetStores, SayThatRightsAreMissing) {
    constexpr uid_t nobody = 65534;
    publishText("mine", "1");
    fs::permissions(folder.path(), fs::perms(0755));
    fs::permissions(folder.file("root/sets"), fs::perms(0555));
    EXPECT_EQ(exitCodeOf(forked([&] {
                  if (geteuid() == 0 && setuid(nobody) != 0)
                      return 2;
                  const std::string said = told([&](std::ostream&) { store.stage(); });
                  return said.find("run the same again as root") != std::string::npos ? 0 : 1;
              })),
              0);
    fs::permissions(folder.file("root/sets"), fs::perms(0755));
}

TEST_F(SetStores, DoNotSendRootToRoot) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root is told so";
    const SetStore unwritable("/proc/none", folder.file("packages"));
    EXPECT_THAT(told([&](std::ostream&) { unwritable.stage(); }),
                AllOf(HasSubstr("refused: \"/proc/none\" cannot be written, not even by root"),
                      Not(HasSubstr("sudo"))));
}

} // namespace
