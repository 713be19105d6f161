// SPDX-License-Identifier: GPL-3.0-or-later
#include "VirtualDisplay.h"

#include "host/X11.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

namespace orvane::kestrum::host::test {

namespace {

constexpr int longestStartMilliseconds = 20000;

/// The number that the server writes once clients can come.
std::string readNumber(int descriptor) {
    std::string number;
    pollfd waiting{descriptor, POLLIN, 0};
    char letter = 0;
    while (poll(&waiting, 1, longestStartMilliseconds) > 0 && read(descriptor, &letter, 1) == 1 &&
           letter != '\n')
        number += letter;
    return number;
}

} // namespace

struct VirtualDisplay::Connection {
    DisplayPointer display = openDisplay();
};

VirtualDisplay::VirtualDisplay(int wide, int high) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("No pipe to the X server.");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    constexpr int told = 9; // a descriptor that nothing else of the server uses
    posix_spawn_file_actions_adddup2(&actions, ends[1], told);
    for (const int stream :
         {STDOUT_FILENO, STDERR_FILENO}) // else who reads the test's output waits for the server
        posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
    const std::string screen = std::to_string(wide) + "x" + std::to_string(high) + "x24";
    const std::string descriptor = std::to_string(told);
    std::array<const char*, 10> arguments{"Xvfb",       "-displayfd",   descriptor.c_str(), "-screen",
                                          "0",          screen.c_str(), "-nolisten",        "tcp",
                                          "-terminate", nullptr};
    // the interface wants writable strings, which the program's start then copies
    const int failure =
        posix_spawnp(&server, "Xvfb", &actions, nullptr, const_cast<char* const*>(arguments.data()), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    const std::string number = failure == 0 ? readNumber(ends[0]) : "";
    close(ends[0]);
    if (number.empty()) {
        if (failure == 0)
            kill(server, SIGTERM);
        throw std::runtime_error("The X server Xvfb cannot be started; scripts/setup installs it.");
    }
    setenv("DISPLAY", (":" + number).c_str(), 1);
    connection = std::make_unique<Connection>();
}

VirtualDisplay::~VirtualDisplay() {
    connection.reset();
    unsetenv("DISPLAY");
    kill(server, SIGTERM);
    waitpid(server, nullptr, 0);
}

NoDisplay::NoDisplay() {
    if (const char* const name = std::getenv("DISPLAY"))
        before = name;
    unsetenv("DISPLAY");
}

NoDisplay::~NoDisplay() {
    if (!before.empty())
        setenv("DISPLAY", before.c_str(), 1);
}

} // namespace orvane::kestrum::host::test
