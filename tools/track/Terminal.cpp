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

} // namespace

Terminal::Terminal()
    : keys(isatty(STDIN_FILENO) == 1 && tcgetattr(STDIN_FILENO, &before) == 0),
      drawing(isatty(STDOUT_FILENO) == 1) {
    resume();
}

Terminal::~Terminal() { suspend(); }

void Terminal::suspend() {
    if (drawing && !shown.empty())
        std::fputs(eraseLine, stdout);
    std::fflush(stdout);
    shown.clear();
    if (keys)
        tcsetattr(STDIN_FILENO, TCSANOW, &before);
}

void Terminal::resume() {
    if (!keys)
        return;
    termios raw = before;
    raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    raw.c_cc[VMIN] = 0;
    raw.c_cc[VTIME] = 0;
    tcsetattr(STDIN_FILENO, TCSANOW, &raw);
}

std::optional<char> Terminal::key() {
    pollfd waiting{STDIN_FILENO, POLLIN, 0};
    if (!keys || poll(&waiting, 1, 0) <= 0)
        return std::nullopt;
    char pressed = 0;
    if ((waiting.revents & POLLIN) != 0 && read(STDIN_FILENO, &pressed, 1) == 1)
        return pressed;
    keys =
        (waiting.revents & (POLLHUP | POLLERR | POLLNVAL)) == 0; // a terminal that has gone is asked no more
    return std::nullopt;
}

void Terminal::show(std::string_view line) {
    if (!drawing)
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
