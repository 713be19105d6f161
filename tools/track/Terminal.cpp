// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/Terminal.h"

#include <algorithm>
#include <cstdio>

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace orvane::kestrum::track {

namespace {

constexpr const char* eraseLine = "\r\033[K";

std::size_t terminalWidth() {
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1 ? size.ws_col : 80;
}

/// A terminal that is not the session's own has no foreground: then nobody else reads from it.
bool isForeground(int terminal) {
    const pid_t group = tcgetpgrp(terminal);
    return group < 0 || group == getpgrp();
}

} // namespace

Terminal::Terminal() : keys(isatty(STDIN_FILENO) == 1), drawing(isatty(STDOUT_FILENO) == 1) { follow(); }

Terminal::~Terminal() { suspend(); }

void Terminal::follow() {
    foreground = isForeground(keys ? STDIN_FILENO : STDOUT_FILENO);
    if (!foreground) { // the shell has put its own settings in force and its own text below ours
        taken = false;
        shown.clear();
    }
    if (taken || !foreground || !keys || tcgetattr(STDIN_FILENO, &before) != 0)
        return;
    termios raw = before;
    raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    raw.c_iflag &= ~static_cast<tcflag_t>(IXON); // Ctrl-S would hold the output up, and with it the heads
    raw.c_cc[VMIN] = 0;
    raw.c_cc[VTIME] = 0;
    taken = tcsetattr(STDIN_FILENO, TCSANOW, &raw) == 0;
}

void Terminal::suspend() {
    follow();
    if (drawing && !shown.empty())
        std::fputs(eraseLine, stdout);
    std::fflush(stdout);
    shown.clear();
    if (taken)
        tcsetattr(STDIN_FILENO, TCSANOW, &before);
    taken = false;
}

std::optional<char> Terminal::key() {
    pollfd waiting{STDIN_FILENO, POLLIN, 0};
    if (keyDescriptor() < 0 || poll(&waiting, 1, 0) <= 0)
        return std::nullopt;
    char pressed = 0;
    if (read(STDIN_FILENO, &pressed, 1) == 1)
        return pressed;
    follow();
    keys =
        !foreground; // a terminal that has gone is asked no more; one that the shell has just taken may come back
    return std::nullopt;
}

void Terminal::show(std::string_view line) {
    if (!drawing || !foreground)
        return;
    const std::string fitting(line.substr(0, terminalWidth() - 1));
    if (fitting == shown)
        return;
    std::fprintf(stdout, "%s%s", eraseLine, fitting.c_str());
    std::fflush(stdout);
    shown = fitting;
}

void Terminal::say(std::string_view text) {
    if (drawing && !shown.empty())
        std::fputs(eraseLine, stdout);
    std::fprintf(stdout, "%s\n", std::string(text).c_str());
    if (drawing && !shown.empty())
        std::fputs(shown.c_str(), stdout);
    std::fflush(stdout);
}

} // namespace orvane::kestrum::track
