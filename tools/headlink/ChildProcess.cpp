// SPDX-License-Identifier: GPL-3.0-or-later
#include "headlink/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <exception>
#include <stdexcept>

namespace orvane::kestrum::headlink {

namespace {

constexpr char answeredMark = 'a', refusedMark = 'r'; // before the text on its way through the pipe

void writeAll(int pipe, const std::string& text) {
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t count = write(pipe, text.data() + done, text.size() - done);
        if (count <= 0)
            return;
        done += static_cast<std::size_t>(count);
    }
}

[[noreturn]] void live(const std::function<std::string()>& work, int pipe) {
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    const int nowhere = open("/dev/null", O_RDWR);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(nowhere, stream);
    try {
        writeAll(pipe, answeredMark + work());
    } catch (const std::exception& error) {
        writeAll(pipe, refusedMark + std::string(error.what()));
    } catch (...) {
        writeAll(pipe, refusedMark + std::string("it stopped for an unknown reason."));
    }
    _exit(0); // what the parent has registered to run at its end is not the child's business
}

/// @return whether the other end was closed in time.
bool readUntil(int pipe, std::chrono::steady_clock::time_point end, std::string& text) {
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        pollfd waiting{pipe, POLLIN, 0};
        if (left.count() <= 0 || poll(&waiting, 1, static_cast<int>(left.count())) == 0)
            return false;
        std::array<char, 4096> piece{};
        const ssize_t count = read(pipe, piece.data(), piece.size());
        if (count <= 0)
            return true;
        text.append(piece.data(), static_cast<std::size_t>(count));
    }
}

} // namespace

ChildResult inChildProcess(const std::function<std::string()>& work, std::chrono::milliseconds limit) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("No process can be started to look at it: end some programs and try again.");
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        live(work, ends[1]);
    }
    close(ends[1]);
    if (child < 0) {
        close(ends[0]);
        throw std::runtime_error("No process can be started to look at it: end some programs and try again.");
    }
    std::string text;
    const bool inTime = readUntil(ends[0], std::chrono::steady_clock::now() + limit, text);
    close(ends[0]);
    kill(child, SIGKILL); // has no effect once it has ended
    waitpid(child, nullptr, 0);
    if (!inTime)
        return {ChildResult::End::tooLate, {}};
    if (text.empty() || (text[0] != answeredMark && text[0] != refusedMark))
        return {ChildResult::End::crashed, {}};
    return {text[0] == answeredMark ? ChildResult::End::answered : ChildResult::End::refused, text.substr(1)};
}

} // namespace orvane::kestrum::headlink
