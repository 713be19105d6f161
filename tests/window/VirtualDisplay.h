// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sys/types.h>

#include <memory>
#include <string>

namespace orvane::kestrum::host::test {

/// An X server of its own without a screen to look at, of 24 bits and no window manager. The variable
/// DISPLAY names it as long as it lives. It ends by itself when its last client has gone, so a test that crashes
/// leaves none behind.
///
/// Errors  std::runtime_error when the server cannot be started.
class VirtualDisplay {
public:
    static constexpr int width = 1440, height = 1000;

    explicit VirtualDisplay(int wide = width, int high = height);
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;
    ~VirtualDisplay();

private:
    struct Connection;
    pid_t server = -1;
    std::unique_ptr<Connection> connection; ///< Keeps the server up between two clients.
};

/// Takes the variable DISPLAY away for as long as it lives.
class NoDisplay {
public:
    NoDisplay();
    NoDisplay(const NoDisplay&) = delete;
    NoDisplay& operator=(const NoDisplay&) = delete;
    ~NoDisplay();

private:
    std::string before;
};

} // namespace orvane::kestrum::host::test
