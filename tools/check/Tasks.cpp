// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/Tasks.h"

#include "check/CheckError.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <optional>
#include <string_view>
#include <thread>

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

/// Starts a process whose error stream is `errors`.
pid_t start(const std::vector<std::string>& command, int errors) {
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
    pid_t process = 0;
    const int failure =
        posix_spawnp(&process, command.front().c_str(), &streams, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&streams);
    if (failure != 0)
        throw CheckError("The program \"" + command.front() + "\" cannot be started (" +
                         std::strerror(failure) + ").");
    return process;
}

/// Runs one process to its end. @throws CheckError when it fails.
void run(const Task& task) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw CheckError("Too many files are open: close other programs, or choose fewer --jobs.");
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    const pid_t process = start(task.command, writing.get());
    writing.close(); // the end of the text is the end of the process
    const std::string said = lastLine(untilItsEnd(reading.get()));
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
        return;
    const std::string reason = WIFSIGNALED(status)
                                   ? std::string("it was ended by the signal \"") +
                                         strsignal(WTERMSIG(status)) + "\"; run the command again."
                                   : said;
    throw CheckError("\"" + task.name + "\" was not rendered: " + reason);
}

} // namespace

void runTasks(std::span<const Task> tasks, unsigned atOnce, const TaskWatcher& watcher) {
    std::mutex guard;
    std::condition_variable changed;
    std::vector<TaskState> states(tasks.size(), TaskState::waiting);
    std::size_t next = 0;
    std::optional<CheckError> failure;
    std::size_t running = std::min<std::size_t>(std::max(1u, atOnce), tasks.size());

    const auto take = [&] {
        std::unique_lock lock(guard);
        while (next < tasks.size() && !failure) {
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
            states[index] = TaskState::done;
            if (own && !failure)
                failure = own;
        }
        --running;
        changed.notify_one();
    };

    std::vector<std::jthread> threads;
    for (std::size_t count = running; count > 0; --count)
        threads.emplace_back(take);
    std::unique_lock lock(guard);
    while (!changed.wait_for(lock, watchEvery, [&] { return running == 0; }))
        if (watcher)
            watcher(states);
    if (watcher)
        watcher(states);
    lock.unlock();
    threads.clear();
    if (failure)
        throw CheckError(*failure);
}

} // namespace orvane::kestrum::check
