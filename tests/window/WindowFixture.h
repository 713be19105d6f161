// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "BundleSupport.h"
#include "Person.h"
#include "Pictures.h"
#include "VirtualDisplay.h"
#include "host/EditorWindow.h"
#include "host/PluginInstance.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace orvane::kestrum::host::test {

constexpr Point windowCorner{160, 170}; ///< On the screen, so that menus find room on every side.
constexpr std::chrono::milliseconds patience{10000}; ///< For what should happen at once.

/// An instance whose bus has so many channels; not prepared.
std::unique_ptr<PluginInstance> makePlugin(unsigned inputs = 16);

/// What the host reads of a parameter, from 0 to 1.
double normalized(const PluginInstance& plugin, std::string_view parameter);
/// The plug-in's words for the parameter's present value.
std::string text(const PluginInstance& plugin, std::string_view parameter);
/// Sets a parameter as a host's own controls do, and sends it: "scene" to "Kitchen", "ambience" to "30".
void setAndSend(PluginInstance& plugin, std::string_view parameter, std::string_view value);

/// One instance of the plug-in with its window on a display of its own, and a person before it.
class OpenWindow {
public:
    explicit OpenWindow(std::unique_ptr<PluginInstance> plugin);

    /// Lets the person act on a thread of their own while the window is served, and then waits until the window rests.
    void act(const std::function<void(Person&)>& actions);

    /// The window's part of the screen once it no longer changes, menus in front of it included.
    Image look();
    /// The whole screen likewise.
    Image lookAtScreen();

    /// Serves the window until the condition holds. @return false when that took longer than anyone waits.
    bool waitUntil(const std::function<bool()>& condition);

    PluginInstance& plugin() const { return *instance; }
    EditorWindow& window() { return editor; }

private:
    Image resting(const std::function<Image()>& see);

    std::unique_ptr<PluginInstance> instance;
    EditorWindow editor;
    Person person;
};

/// Starts a display for each test. Instances and windows have to be gone before it.
class WindowTest : public ::testing::Test {
protected:
    OpenWindow& open(std::unique_ptr<PluginInstance> instance);
    OpenWindow& open() { return open(makePlugin()); }

    VirtualDisplay display;
    std::optional<OpenWindow> shown;
};

} // namespace orvane::kestrum::host::test
