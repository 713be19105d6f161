// SPDX-License-Identifier: GPL-3.0-or-later
#include "Child.h"

#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <system_error>

namespace rawhost {

namespace {

/// Behind what a body has to say: without it the process has ended before its body.
constexpr char endMark = '\0';

[[noreturn]] void fail(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

void writeAll(int file, const std::string& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = write(file, text.data() + written, text.size() - written);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return;
        written += static_cast<std::size_t>(count);
    }
}

[[noreturn]] void runAndReport(const std::function<std::string()>& body, int report) {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none); // a crash is told by the exit status
    std::string text;
    try {
        text = body();
    } catch (const std::exception& error) {
        text = error.what();
    }
    std::fflush(nullptr);
    writeAll(report, text + endMark);
    _exit(0); // nothing of the test program's own is to be torn down twice
}

/// @return false when the time is over.
bool readAll(int file, std::string& text, std::chrono::steady_clock::time_point end) {
    std::array<char, 4096> piece;
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return false;
        pollfd ready{file, POLLIN, 0};
        if (poll(&ready, 1, static_cast<int>(left.count())) <= 0)
            continue; // interrupted, or over: the next turn tells
        const ssize_t count = read(file, piece.data(), piece.size());
        if (count == 0)
            return true;
        if (count > 0)
            text.append(piece.data(), static_cast<std::size_t>(count));
    }
}

std::string endOf(int status, bool reported) {
    if (WIFSIGNALED(status))
        return "ended by signal " + std::to_string(WTERMSIG(status)) + " (" + strsignal(WTERMSIG(status)) +
               ")";
    if (WEXITSTATUS(status) != 0)
        return "ended with exit status " + std::to_string(WEXITSTATUS(status));
    return reported ? "" : "ended before its body did";
}

} // namespace

std::string inChild(const std::function<std::string()>& body, std::chrono::seconds guard) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        fail("pipe");
    std::fflush(nullptr); // what waits to be written would be written twice
    const pid_t child = fork();
    if (child < 0)
        fail("fork");
    if (child == 0) {
        close(ends[0]);
        runAndReport(body, ends[1]);
    }
    close(ends[1]);
    std::string text;
    const bool ended = readAll(ends[0], text, std::chrono::steady_clock::now() + guard);
    close(ends[0]);
    if (!ended)
        kill(child, SIGKILL);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    const bool reported = text.ends_with(endMark);
    if (reported)
        text.pop_back();
    return text + (ended ? endOf(status, reported)
                         : "hung: no end within " + std::to_string(guard.count()) + " seconds");
}

} // namespace rawhost
