// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace rawhost {

/// Runs `body` in a forked process of its own, so that a crash, a hang or an unloaded module is that case's alone.
///
/// The caller's process must have no threads but its own: a lock that another one holds would stay held in the child.
///
/// @param body  what it returns or throws comes back; an empty text is its way of saying that all is well.
/// @param guard ends a child that hangs. Generous: nothing is measured by it.
/// @return the body's text, then, when the child did not end by itself, how it ended: "ended by signal 11 (...)".
std::string inChild(const std::function<std::string()>& body,
                    std::chrono::seconds guard = std::chrono::seconds(600));

} // namespace rawhost
