// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/LinkWriter.h"

#include <algorithm>
#include <chrono>

#include <csignal>

namespace orvane::kestrum::track {

namespace {

constexpr std::chrono::milliseconds interval{4};
constexpr auto longestMadeUpFor = 4 * interval; ///< Of a pause: longer ones of a desktop are rare.

/// Holds back every signal of this thread for the length of a scope.
class SignalsHeld {
public:
    SignalsHeld() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

private:
    sigset_t before{};
};

} // namespace

LinkWriter::~LinkWriter() {
    if (isActive)
        release();
}

void LinkWriter::write(const Rotation& rotation, Instant now) {
    waiting = rotation;
    flush(now);
}

void LinkWriter::flush(Instant now) {
    if (!waiting || now < *due())
        return;
    const HeadRotationMatrix matrix = linkMatrix(*waiting);
    {
        const SignalsHeld held;
        server->setRotation(matrix);
    }
    waiting.reset();
    nextDue = std::max(nextDue, now - longestMadeUpFor) + interval;
    if (!isActive)
        server->setActive(true);
    isActive = true;
}

std::optional<Instant> LinkWriter::due() const {
    if (!waiting)
        return std::nullopt;
    return nextDue;
}

void LinkWriter::release() {
    waiting.reset();
    server->setActive(false);
    isActive = false;
}

} // namespace orvane::kestrum::track
