// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ipc/IHeadRotationServer.h"

#include <csignal>
#include <optional>

namespace orvane::kestrum::track {

/// Takes every signal that can be taken: those that ask for something are read one by one, those of a broken program
/// give the plug-ins their dial back before the process dies by them.
///
/// Thread  one, the only one of the process.
class Signals {
public:
    /// @param server borrowed; told to be inactive when the program breaks.
    /// @throws TrackError when the system has no descriptor left.
    explicit Signals(OrvaneIPC::IHeadRotationServer& server);
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    /// What a signal asks for.
    enum class Request { nothing, recentre, stop, end };

    /// The next signal's; empty when none waits.
    std::optional<Request> next();

    /// To wait for.
    int descriptor() const { return pipe; }

    /// Stops the process as Ctrl-Z does; returns when it is continued.
    static void stopProcess();

private:
    sigset_t before{};
    int pipe;
};

} // namespace orvane::kestrum::track
