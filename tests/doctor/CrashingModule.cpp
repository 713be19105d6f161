// SPDX-License-Identifier: GPL-3.0-or-later
// A module that crashes when it is loaded.
#include <csignal>

namespace {

struct Crash {
    Crash() { std::raise(SIGKILL); } // whatever sanitizer or handler there is, the process is gone
};
const Crash crash;

} // namespace
