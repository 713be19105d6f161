// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/Image.h"
#include "host/PluginInstance.h"

#include <chrono>
#include <functional>
#include <memory>

namespace orvane::kestrum::host {

struct Size {
    int width = 0;
    int height = 0;
    bool operator==(const Size&) const = default;
};

/// A plug-in's window as an audio workstation shows it: the plug-in's own view inside a window of the X display
/// that the variable DISPLAY names. No window manager is needed.
///
/// Made with the view, shown by open(), gone with the object. The instance has to outlive it.
///
/// Thread  the instance's; everything that the view does happens inside these operations. What another program or
///         thread does to the display meanwhile is seen by pumping.
/// Errors  HostError.
class EditorWindow {
public:
    /// Makes the view; needs no display.
    /// @throws HostError when the plug-in has none to give, as while another window of the instance is there.
    explicit EditorWindow(PluginInstance& plugin);
    EditorWindow(const EditorWindow&) = delete;
    EditorWindow& operator=(const EditorWindow&) = delete;
    ~EditorWindow();

    /// What the view says, in pixels.
    Size viewSize() const;
    /// Whether a person may change the size.
    bool resizable() const;
    /// Tells the view how many pixels one of its units takes; before or after open().
    /// @return false when the view cannot be told.
    bool setScale(float factor);

    /// Shows the window, its upper left corner at so many pixels of the display, and attaches the view.
    /// @throws HostError when there is no display, or when the view does not want to be attached; the window is not
    ///         open then.
    void open(int x = 0, int y = 0);
    /// Takes the view from the window, which goes. Does nothing when not open. The view cannot be opened again.
    void close();
    bool isOpen() const;
    Size windowSize() const; ///< As the display says. Only while open.

    /// Serves the view until the condition holds. @return false when the time was over before.
    bool pumpUntil(const std::function<bool()>& condition, std::chrono::milliseconds longest);
    void pumpFor(std::chrono::milliseconds duration);

    /// What the window shows now, without what lies in front of it. Only while open.
    Image screenshot() const;

    /// The view's files and timers that are being served.
    std::size_t servedCount() const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts;
};

} // namespace orvane::kestrum::host
