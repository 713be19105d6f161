// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <termios.h>

namespace orvane::kestrum::track {

/// The terminal that the program was started from, if there is one: single keys in, one redrawn line out.
///
/// While the program runs in the background, the terminal is the shell's: no key is read, no line redrawn and no setting
/// changed.
class Terminal {
public:
    /// Keys come at once and unseen from here on.
    Terminal();
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Looks whether the program is in the foreground, and takes the terminal when it has come there; often enough.
    void follow();

    /// A key that was pressed; empty when none waits.
    std::optional<char> key();

    /// False when neither keys nor the line have anything to do with a terminal: then there is nothing to follow or show.
    bool attached() const { return keys || drawing; }

    /// Where keys come from, to wait for; -1 without.
    int keyDescriptor() const { return keys && foreground ? 0 : -1; }

    /// Draws the line anew. Nothing when the output is no terminal.
    void show(std::string_view line);

    /// Puts a lasting line of text above the redrawn one; on any kind of output.
    void say(std::string_view text);

    /// Gives the terminal its own ways back, until follow().
    void suspend();

private:
    bool keys;
    bool drawing;
    bool foreground = false;
    bool taken = false;
    termios before{};  ///< The terminal's own ways, if it is taken.
    std::string shown; ///< What the redrawn line holds.
};

} // namespace orvane::kestrum::track
