// SPDX-License-Identifier: GPL-3.0-or-later
#include "TrackProgram.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace test {

std::filesystem::path TrackProgram::folder() {
    // Made once, before the first fork: the child has another number.
    static const auto path =
        std::filesystem::temp_directory_path() / ("kestrum_track_program_" + std::to_string(getpid()));
    return path;
}

namespace {

[[noreturn]] void become(char** arguments) {
    const std::string home = TrackProgram::folder().string();
    for (const char* const name : {"XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"})
        setenv(name, home.c_str(), 1);
    execv(arguments[0], arguments);
    _exit(127);
}

} // namespace

TrackProgram::TrackProgram(std::vector<std::string> arguments, Screen screen) {
    std::filesystem::create_directories(folder());
    arguments.insert(arguments.begin(), {KESTRUM_PROGRAM, "track"});
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    onTerminal = screen != Screen::none;
    if (onTerminal)
        startOnTerminal(pointers.data(), screen);
    else
        startWithoutTerminal(pointers.data());
    says("The link is up.");
}

void TrackProgram::startWithoutTerminal(char** arguments) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    process = fork();
    if (process == 0) {
        dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
        dup2(ends[1], STDOUT_FILENO);
        dup2(ends[1], STDERR_FILENO);
        become(arguments);
    }
    close(ends[1]);
    pipe = ends[0];
}

void TrackProgram::startOnTerminal(char** arguments, Screen screen) {
    winsize size{};
    size.ws_col = 120;
    size.ws_row = 24;
    process = forkpty(&pipe, nullptr, nullptr, &size);
    if (process < 0)
        throw std::runtime_error("no terminal");
    if (process != 0)
        return;
    // The shell outlives the program on the terminal and tells how it was left: with the first process of its session a
    // terminal loses its settings.
    const std::string inForeground = "\"$0\" \"$@\"; status=$?; stty -a; exit $status";
    const std::string inBackground =
        "set -m; \"$0\" \"$@\" & read line; echo \"the shell has read $line\"; stty -a; "
        "kill $!; wait $!";
    std::array<std::string, 3> words{"/bin/sh", "-c",
                                     screen == Screen::background ? inBackground : inForeground};
    std::vector<char*> shell{words[0].data(), words[1].data(), words[2].data()};
    char** end = arguments;
    while (*end != nullptr)
        ++end;
    shell.insert(shell.end(), arguments, end + 1);
    become(shell.data());
}

TrackProgram::~TrackProgram() {
    if (process > 0) {
        kill(onTerminal ? -process : process, SIGKILL); // with a terminal also the shell's child
        waitpid(process, nullptr, 0);
    }
    close(pipe);
}

bool TrackProgram::readMore() {
    std::array<char, 4096> piece{};
    pollfd waiting{pipe, POLLIN, 0};
    if (poll(&waiting, 1, 10000) <= 0)
        return false;
    const ssize_t count = read(pipe, piece.data(), piece.size());
    if (count > 0)
        said.append(piece.data(), static_cast<std::size_t>(count));
    return count > 0;
}

bool TrackProgram::says(const std::string& text) {
    // On a terminal it draws its line again and again, so there is always more to read.
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (said.find(text) == std::string::npos)
        if (std::chrono::steady_clock::now() > end || !readMore())
            return false;
    return true;
}

bool TrackProgram::shows(const std::string& text) {
    pollfd waiting{pipe, POLLIN, 0};
    if (poll(&waiting, 1, 0) > 0)
        readMore();
    return said.find(text) != std::string::npos;
}

void TrackProgram::signal(int number) const { kill(process, number); }

void TrackProgram::press(char key) const {
    if (write(pipe, &key, 1) != 1)
        throw std::runtime_error("no terminal");
}

int TrackProgram::finish() {
    while (readMore())
        ;
    int status = 0;
    waitpid(process, &status, 0);
    process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

bool TrackProgram::stopped() const {
    int status = 0;
    return waitpid(process, &status, WUNTRACED) == process && WIFSTOPPED(status);
}

std::uint16_t TrackProgram::portAfter(const std::string& words) const {
    const auto found = said.find(words);
    if (found == std::string::npos)
        throw std::runtime_error("no port in: " + said);
    return static_cast<std::uint16_t>(std::stoi(said.substr(found + words.size())));
}

bool becomesTrue(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (std::chrono::steady_clock::now() < end) {
        if (condition())
            return true;
        std::this_thread::yield();
    }
    return condition();
}

} // namespace test
