// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/Tasks.h"

#include "CheckSupport.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>

namespace {

using namespace orvane::kestrum::check;
using ::test::refusalOf;
using ::testing::Each;
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
