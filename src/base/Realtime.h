// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Marks every function of the block path: no allocation, no lock, no wait, no system call.
/// A compiler that knows the promise (clang 20 on) checks it; elsewhere the tests' realtime scope is the
/// guard.
#if defined(__clang__) && __clang_major__ >= 20
#    define ORVANE_REALTIME [[clang::nonblocking]]
#else
#    define ORVANE_REALTIME
#endif
