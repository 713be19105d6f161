// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace orvane::kestrum::check {

/// A process to run.
struct Task {
    std::string name; ///< For messages.
    std::vector<std::string> command;
};

enum class TaskState { waiting, running, done, failed };

/// Told several times a second where every task stands. Called on the caller's thread.
using TaskWatcher = std::function<void(std::span<const TaskState>)>;

/// Runs every task as a process of its own, at most `atOnce` at a time, in order. Their standard output is dropped.
///
/// Told to end by SIGHUP, SIGINT or SIGTERM, this hands the signal on to the running processes, waits for their end and
/// takes it then itself: no process is left behind.
///
/// Thread  one thread of this process waits for each running task.
/// Errors  CheckError with the name and the last line on the error stream of the first task that failed; no further
///         task is begun, those under way are waited for. CheckError, too, when a signal stopped the tasks and a handler
///         kept this program alive.
void runTasks(std::span<const Task> tasks, unsigned atOnce, const TaskWatcher& watcher = {});

} // namespace orvane::kestrum::check
