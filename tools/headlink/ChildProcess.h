// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace orvane::kestrum::headlink {

/// How a child process ended.
struct ChildResult {
    enum class End {
        answered, ///< text is what the work returned.
        refused,  ///< text is the message of the exception that it threw.
        crashed,
        tooLate,
    };
    End end = End::crashed;
    std::string text;
};

/// Does work that may crash or hang in a child process, which is killed when it takes too long. The child's standard streams
/// lead nowhere.
///
/// Thread  the calling process has no other thread, since only the caller's lives on in the child.
/// Errors  std::runtime_error when no process can be made.
ChildResult inChildProcess(const std::function<std::string()>& work, std::chrono::milliseconds limit);

} // namespace orvane::kestrum::headlink
