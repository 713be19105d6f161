// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "WindowFixture.h"
#include "base/HeadRotationMatrix.h"
#include "ipc/IHeadRotationServer.h"

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace orvane::kestrum::host::test {

/// One picture of the editor that is worth keeping: README and manual show it, and tests hold the window to it.
struct View {
    std::string name; ///< Of the picture's file.
    unsigned inputs;  ///< Channels of the bus.
    /// Brings the window into the state, and takes the picture.
    std::function<Image(OpenWindow&)> take;
    friend void PrintTo(const View& view, std::ostream* stream) { *stream << view.name; }
};

/// Every view that needs nothing but the plug-in.
const std::vector<View>& plainViews();

/// The matrix of a head that is turned so far about the vertical.
HeadRotationMatrix turnedBy(float degrees);

/// Every control away from where a new instance has it.
void moveEverything(PluginInstance& plugin);

/// The window while a tracker, which has to be there before the instance, turns the head; it lets go in the end, and
/// the dial is waited for.
Image takeTrackedDial(OpenWindow& opened, OrvaneIPC::IHeadRotationServer& tracker, float degrees);

/// Opens a window of its own for the view.
Image take(const View& view);

} // namespace orvane::kestrum::host::test
