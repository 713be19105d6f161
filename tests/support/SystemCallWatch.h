// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace test {

/// Tells whether the calling thread made a system call since watchSystemCalls(). The kernel hands the first one to a signal
/// handler, which notes it, ends the watch and lets it be made.
///
/// Thread  each thread watches itself only.
bool canWatchSystemCalls() noexcept;
void watchSystemCalls() noexcept;
void endSystemCallWatch() noexcept;
bool madeSystemCall() noexcept;

} // namespace test
