// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/Signals.h"

#include "track/TrackError.h"

#include <array>
#include <atomic>

#include <sys/signalfd.h>
#include <unistd.h>

namespace orvane::kestrum::track {

namespace {

constexpr std::array broken{SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGTRAP, SIGSYS};

std::atomic<OrvaneIPC::IHeadRotationServer*> serverToRelease{nullptr};

/// The flag is one atomic byte in mapped memory, so a handler may write it. The signal's own effect follows.
void releaseAndDie(int number) {
    if (auto* const server = serverToRelease.load())
        server->setActive(false);
    raise(number); // delivered on return, with the default action that SA_RESETHAND has put back
}

} // namespace

Signals::Signals(OrvaneIPC::IHeadRotationServer& server) {
    serverToRelease = &server;
    sigset_t taken;
    sigfillset(&taken);
    struct sigaction action {};
    action.sa_handler = releaseAndDie;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int number : broken) {
        sigdelset(&taken, number);
        sigaction(number, &action, nullptr);
    }
    pthread_sigmask(SIG_SETMASK, &taken, &before);
    pipe = signalfd(-1, &taken, SFD_CLOEXEC | SFD_NONBLOCK);
    if (pipe < 0)
        throw TrackError("The system has no descriptor left to wait for signals: end other programs first.");
}

Signals::~Signals() {
    serverToRelease = nullptr;
    for (const int number : broken)
        signal(number, SIG_DFL);
    while (next()) // what came while ending has its effect already
        ;
    close(pipe);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

std::optional<Signals::Request> Signals::next() {
    signalfd_siginfo information{};
    if (read(pipe, &information, sizeof(information)) != static_cast<ssize_t>(sizeof(information)))
        return std::nullopt;
    switch (static_cast<int>(information.ssi_signo)) {
    case SIGUSR1:
        return Request::recentre;
    case SIGTSTP:
        return Request::stop;
    case SIGCHLD:
    case SIGCONT:
    case SIGPIPE:
    case SIGTTIN:
    case SIGTTOU:
    case SIGURG:
    case SIGWINCH:
        return Request::nothing;
    default:
        return Request::end;
    }
}

void Signals::stopProcess() { raise(SIGSTOP); }

} // namespace orvane::kestrum::track
