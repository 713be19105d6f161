// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/Tasks.h"

#include "check/CheckError.h"

#include <fcntl.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstring>
#include <mutex>
#include <optional>
#include <string_view>
#include <thread>
#include <vector>

namespace orvane::kestrum::check {

namespace {

constexpr std::chrono::milliseconds watchEvery{100};

/// Closes a file descriptor.
class Descriptor {
public:
    explicit Descriptor(int number) : number(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }
    void close() {
        if (number >= 0)
            ::close(number);
        number = -1;
    }
    int get() const { return number; }

private:
    int number;
};

std::string lastLine(std::string text) {
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    text.erase(0, text.rfind('\n') + 1); // npos + 1 is 0
    constexpr std::string_view programName = "kestrum: ";
    return text.starts_with(programName) ? text.substr(programName.size()) : text;
}

std::string untilItsEnd(int descriptor) {
    std::string text;
    std::array<char, 4096> piece{};
    for (;;) {
        const ssize_t count = read(descriptor, piece.data(), piece.size());
        if (count > 0)
            text.append(piece.data(), static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            return text;
    }
}

/// The signals by which a program is told to end, as far as this one has not been told to ignore them (as nohup does). They
/// are blocked while this lives, in threads begun meanwhile too, and fetched instead: so no work is done in a handler.
class EndSignals {
public:
    EndSignals() {
        sigemptyset(&fetched);
        for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
            struct sigaction action {};
            sigaction(number, nullptr, &action);
            if (action.sa_handler != SIG_IGN)
                sigaddset(&fetched, number);
        }
        pthread_sigmask(SIG_BLOCK, &fetched, &before);
    }
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;
    ~EndSignals() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }

    /// @return a signal that has come, else 0.
    int fetch() const {
        constexpr timespec noTime{};
        const int number = sigtimedwait(&fetched, nullptr, &noTime);
        return number > 0 ? number : 0;
    }
    /// The mask that was there before, for the processes begun meanwhile.
    const sigset_t& outside() const { return before; }

private:
    sigset_t fetched{}, before{};
};

/// Starts a process whose error stream is `errors`.
pid_t start(const std::vector<std::string>& command, int errors, const sigset_t& mask) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& word : command)
        arguments.push_back(const_cast<char*>(word.c_str())); // the call takes them so and leaves them alone
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t streams;
    posix_spawn_file_actions_init(&streams);
    posix_spawn_file_actions_addopen(&streams, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&streams, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&streams, errors, STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setsigmask(&attributes, &mask);
    pid_t process = 0;
    const int failure =
        posix_spawnp(&process, command.front().c_str(), &streams, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&streams);
    if (failure != 0)
        throw CheckError("The program \"" + command.front() + "\" cannot be started (" +
                         std::strerror(failure) + ").");
    return process;
}

/// All tasks, where they stand, and the threads that wait for them.
///
/// Thread  every field behind `guard`; a process is reaped only after it has left `processes`, so that no signal goes to
///         another process which got its number.
class TaskRun {
public:
    TaskRun(std::span<const Task> tasks, unsigned atOnce, const sigset_t& mask)
        : tasks(tasks),
          mask(mask),
          states(tasks.size(), TaskState::waiting),
          busyThreads(std::min<std::size_t>(std::max(1u, atOnce), tasks.size())) {
        for (std::size_t count = busyThreads; count > 0; --count)
            threads.emplace_back([this] { work(); });
    }

    /// @return true when no thread works any more, false after a while.
    bool waitAWhile() {
        std::unique_lock lock(guard);
        return changed.wait_for(lock, watchEvery, [this] { return busyThreads == 0; });
    }

    std::vector<TaskState> currentStates() {
        const std::lock_guard lock(guard);
        return states;
    }

    /// Hands a signal on to every process and begins no further one.
    void stop(int signal) {
        const std::lock_guard lock(guard);
        stopped = true;
        for (const pid_t process : processes)
            kill(process, signal);
    }

    /// Once no thread works any more.
    const std::optional<CheckError>& failure() const { return firstFailure; }

private:
    void work() {
        std::unique_lock lock(guard);
        while (next < tasks.size() && !firstFailure && !stopped) {
            const std::size_t index = next++;
            states[index] = TaskState::running;
            lock.unlock();
            std::optional<CheckError> own;
            try {
                run(tasks[index]);
            } catch (const CheckError& error) {
                own = error;
            }
            lock.lock();
            states[index] = own ? TaskState::failed : TaskState::done;
            if (own && !firstFailure)
                firstFailure = own;
        }
        --busyThreads;
        changed.notify_one();
    }

    /// Runs one process to its end. @throws CheckError when it fails.
    void run(const Task& task) {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            throw CheckError("Too many files are open: close other programs, or choose fewer --jobs.");
        const Descriptor reading(ends[0]);
        Descriptor writing(ends[1]);
        const pid_t process = enter(task, writing.get());
        writing.close(); // the end of the text is the end of the process
        const std::string said = lastLine(untilItsEnd(reading.get()));
        const int status = leave(process);
        if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
            return;
        const std::string reason = WIFSIGNALED(status)
                                       ? std::string("it was ended by the signal \"") +
                                             strsignal(WTERMSIG(status)) + "\"; run the command again."
                                       : said;
        throw CheckError("\"" + task.name + "\" was not rendered: " + reason);
    }

    /// Begun under the lock, a process cannot be missed by stop().
    pid_t enter(const Task& task, int errors) {
        const std::lock_guard lock(guard);
        if (stopped)
            throw CheckError("\"" + task.name + "\" was not rendered: the check was stopped.");
        const pid_t process = start(task.command, errors, mask);
        processes.push_back(process);
        return process;
    }

    /// @return the status of a process, once it has ended.
    int leave(pid_t process) {
        siginfo_t ended{};
        while (waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOWAIT) < 0 && errno == EINTR) {
        }
        const std::lock_guard lock(guard);
        std::erase(processes, process);
        int status = 0;
        while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
        }
        return status;
    }

    std::span<const Task> tasks;
    const sigset_t& mask;
    std::mutex guard;
    std::condition_variable changed;
    std::vector<TaskState> states;
    std::vector<pid_t> processes; ///< Running, or ended and not yet reaped.
    std::size_t next = 0;
    std::size_t busyThreads;
    std::optional<CheckError> firstFailure;
    bool stopped = false;
    std::vector<std::jthread> threads; ///< Last, so that they end before what they use.
};

} // namespace

void runTasks(std::span<const Task> tasks, unsigned atOnce, const TaskWatcher& watcher) {
    int stoppedBy = 0;
    std::optional<CheckError> failure;
    {
        const EndSignals signals;
        TaskRun run(tasks, atOnce, signals.outside());
        for (bool ended = false; !ended;) {
            ended = run.waitAWhile();
            if (watcher)
                watcher(run.currentStates());
            if (const int signal = signals.fetch()) {
                stoppedBy = signal;
                run.stop(signal);
            }
        }
        failure = run.failure();
    }
    if (stoppedBy != 0) {
        raise(stoppedBy); // ends this program as it would have been ended at once
        throw CheckError("The check was stopped: run the command again to go on where it was.");
    }
    if (failure)
        throw CheckError(*failure);
}

} // namespace orvane::kestrum::check
