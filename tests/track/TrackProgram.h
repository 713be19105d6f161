// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace test {

/// What a program has for keys and output.
enum class Screen {
    none,
    terminal,
    background ///< A terminal on which a shell keeps the foreground, until it has read a line.
};

/// The program "kestrum track" in a process of its own, in folders of its own.
class TrackProgram {
public:
    /// Starts it and, unless it refuses, waits until the link is up.
    explicit TrackProgram(std::vector<std::string> arguments, Screen screen = Screen::none);
    ~TrackProgram();
    TrackProgram(const TrackProgram&) = delete;
    TrackProgram& operator=(const TrackProgram&) = delete;

    /// Reads on until the program has said this, or has ended.
    bool says(const std::string& text);

    /// Whether it has said this so far.
    bool shows(const std::string& text);

    void signal(int number) const;

    /// Types on its terminal.
    void press(char key) const;

    /// Reads to the end. @return the exit status, or minus the number of the signal by which it died.
    int finish();

    /// Waits for the system's word that it has stopped or goes on.
    bool stopped() const;

    const std::string& output() const { return said; }

    /// The UDP port for OSC, or for opentrack.
    std::uint16_t oscPort() const { return portAfter("OSC on UDP port "); }
    std::uint16_t openTrackPort() const { return portAfter("opentrack on UDP port "); }
    pid_t id() const { return process; }

    /// Where every program of this test keeps configuration and status.
    static std::filesystem::path folder();

private:
    void startWithoutTerminal(char** arguments);
    void startOnTerminal(char** arguments, Screen screen);
    bool readMore();
    std::uint16_t portAfter(const std::string& words) const;

    pid_t process = -1;
    bool onTerminal = false;
    int pipe = -1; ///< Or the master of its terminal.
    std::string said;
};

/// Asks again and again, for ten seconds at most.
bool becomesTrue(const std::function<bool()>& condition);

} // namespace test
