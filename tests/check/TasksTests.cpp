// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/Tasks.h"

#include "CheckSupport.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>

namespace {

using namespace orvane::kestrum::check;
using ::test::refusalOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

Task shell(const std::string& name, const std::string& script) { return {name, {"sh", "-c", script}}; }

class Tasks : public ::test::FolderTest {};

TEST_F(Tasks, AllRunAndEndDone) {
    std::vector<Task> tasks;
    tasks.reserve(7);
    for (int number = 0; number < 7; ++number)
        tasks.push_back(shell("task", "touch '" + (folder / std::to_string(number)).string() + "'"));
    std::vector<TaskState> last;
    runTasks(tasks, 3, [&](std::span<const TaskState> states) { last.assign(states.begin(), states.end()); });
    EXPECT_EQ(last.size(), 7u);
    EXPECT_THAT(last, Each(TaskState::done));
    for (int number = 0; number < 7; ++number)
        EXPECT_TRUE(std::filesystem::exists(folder / std::to_string(number)));
}

/// Each of the two waits for the other at a pipe with a name: one after the other they would never end.
TEST_F(Tasks, RunAtTheSameTime) {
    const std::string pipe = "'" + (folder / "pipe").string() + "'";
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    const std::vector<Task> tasks{shell("writer", "echo here >" + pipe),
                                  shell("reader", "read word <" + pipe)};
    EXPECT_EQ(refusalOf([&] { runTasks(tasks, 2); }), "accepted");
}

/// A folder can be made only once, so two tasks at one time would fail.
TEST_F(Tasks, AreNeverMoreThanWereAllowed) {
    const std::string place = "'" + (folder / "place").string() + "'";
    const std::vector<Task> tasks(8, shell("task", "mkdir " + place + " && rmdir " + place));
    EXPECT_EQ(refusalOf([&] { runTasks(tasks, 1); }), "accepted");
}

TEST_F(Tasks, FailWithTheNameAndTheLastSentence) {
    const std::vector<Task> tasks{
        shell("Kitchen", "echo first >&2; echo 'kestrum: The disk is full: make room.' >&2; exit 1")};
    EXPECT_EQ(refusalOf([&] { runTasks(tasks, 1); }),
              "\"Kitchen\" was not rendered: The disk is full: make room.");
}

TEST_F(Tasks, BeginNoneAfterAFailure) {
    const std::vector<Task> tasks{shell("bad", "exit 3"),
                                  shell("late", "touch '" + (folder / "late").string() + "'")};
    EXPECT_THROW(runTasks(tasks, 1), CheckError);
    EXPECT_FALSE(std::filesystem::exists(folder / "late"));
}

TEST_F(Tasks, ThatFailAreNotDoneAndThoseBehindThemStillWait) {
    const std::vector<Task> tasks{shell("good", "true"), shell("bad", "exit 3"), shell("late", "true")};
    std::vector<TaskState> last;
    EXPECT_THROW(runTasks(tasks, 1, [&](auto states) { last.assign(states.begin(), states.end()); }),
                 CheckError);
    EXPECT_THAT(last, ElementsAre(TaskState::done, TaskState::failed, TaskState::waiting));
}

volatile std::sig_atomic_t signalThatCame = 0;

void remember(int number) { signalThatCame = number; }

/// The handler keeps this test alive where the program would end. The process says its number only once it runs; it would
/// go on for ten minutes.
TEST_F(Tasks, AreEndedByTheSignalThatEndsThisProgram) {
    const std::filesystem::path said = folder / "number";
    const std::vector<Task> tasks{shell("Club", "echo $$ > '" + said.string() + "'; exec sleep 600"),
                                  shell("Van", "touch '" + (folder / "late").string() + "'")};
    for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
        std::filesystem::remove(said);
        signalThatCame = 0;
        auto* const before = std::signal(number, remember);
        pid_t process = 0;
        const std::string refusal = refusalOf([&] {
            runTasks(tasks, 1, [&](auto) {
                if (process == 0 && std::ifstream(said) >> process)
                    kill(getpid(), number);
            });
        });
        std::signal(number, before);
        EXPECT_EQ(refusal, "The check was stopped: run the command again to go on where it was.");
        EXPECT_EQ(signalThatCame, number);
        ASSERT_GT(process, 0);
        EXPECT_EQ(kill(process, 0), -1) << "the process is gone";
        EXPECT_FALSE(std::filesystem::exists(folder / "late"));
    }
}

/// As under nohup. The process ends by itself after the signal was sent.
TEST_F(Tasks, GoOnWhenThisProgramIgnoresTheSignal) {
    auto* const before = std::signal(SIGHUP, SIG_IGN);
    const std::string pipe = "'" + (folder / "pipe").string() + "'";
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    bool sent = false;
    const std::vector<Task> tasks{shell("Club", "read word <" + pipe)};
    const std::string refusal = refusalOf([&] {
        runTasks(tasks, 1, [&](auto) {
            if (sent)
                return;
            sent = true;
            kill(getpid(), SIGHUP);
            std::ofstream(folder / "pipe") << "go\n";
        });
    });
    std::signal(SIGHUP, before);
    EXPECT_EQ(refusal, "accepted");
}

TEST_F(Tasks, BeginWithTheSignalsThatThisProgramHad) {
    EXPECT_EQ(
        refusalOf([] { runTasks(std::vector<Task>{shell("Club", "kill -TERM $$; exec sleep 600")}, 1); }),
        "\"Club\" was not rendered: it was ended by the signal \"Terminated\"; run the command again.");
}

TEST_F(Tasks, SayThatASignalEndedOne) {
    EXPECT_THAT(refusalOf([] { runTasks(std::vector<Task>{shell("Club", "kill -9 $$")}, 1); }),
                HasSubstr("\"Club\" was not rendered: it was ended by the signal \"Killed\""));
}

TEST_F(Tasks, SayThatAProgramIsNotThere) {
    EXPECT_THAT(refusalOf([] {
                    runTasks(std::vector<Task>{{"Club", {"/no/such/program"}}}, 1);
                }),
                HasSubstr("\"/no/such/program\" cannot be started"));
}

TEST_F(Tasks, MayBeNone) { EXPECT_NO_THROW(runTasks({}, 4)); }

} // namespace
