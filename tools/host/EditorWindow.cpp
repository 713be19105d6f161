// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/EditorWindow.h"

#include "host/HostError.h"
#include "host/RunLoop.h"
#include "host/X11.h"

#include <algorithm>
#include <cstdint>

namespace orvane::kestrum::host {

using Steinberg::kResultOk;
using Steinberg::kResultTrue;
using namespace std::chrono_literals;

namespace {

constexpr auto longestWait = 20ms; ///< Conditions are looked at this often even when nothing happens.

} // namespace

/// Released from bottom to top after close(): the view before the loop that serves it.
struct EditorWindow::Parts {
    std::string plugin; ///< Its name, for messages.
    ComPointer<RunLoop> loop = makeHostObject<RunLoop>();
    DisplayPointer display;
    Window window = 0;
    ComPointer<Steinberg::IPlugView> view;
    bool attached = false;

    Parts() = default;
    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;
    ~Parts();

    void showWindow(int x, int y);
    void takeEvents() const;
    void closeWindow();
    bool resizeTo(const Steinberg::ViewRect& size) const;
};

EditorWindow::Parts::~Parts() {
    if (view)
        view->setFrame(nullptr);
}

void EditorWindow::Parts::showWindow(int x, int y) {
    Steinberg::ViewRect size;
    if (view->getSize(&size) != kResultOk || size.getWidth() <= 0 || size.getHeight() <= 0)
        throw HostError("The view of \"" + plugin + "\" has no size.");
    display = openDisplay();
    const int screen = DefaultScreen(display.get());
    const auto black = BlackPixel(display.get(), screen);
    window = XCreateSimpleWindow(display.get(), RootWindow(display.get(), screen), x, y,
                                 static_cast<unsigned>(size.getWidth()),
                                 static_cast<unsigned>(size.getHeight()), 0, black, black);
    XStoreName(display.get(), window, plugin.c_str());
    XSelectInput(display.get(), window, StructureNotifyMask);
    XMapWindow(display.get(), window);
    XSync(display.get(), False);
}

void EditorWindow::Parts::takeEvents() const {
    XEvent event;
    while (display && XPending(display.get()) > 0)
        XNextEvent(display.get(), &event); // the window is only a frame: nothing that happens to it matters
}

void EditorWindow::Parts::closeWindow() {
    if (display && window != 0)
        XDestroyWindow(display.get(), window);
    window = 0;
    display.reset();
}

bool EditorWindow::Parts::resizeTo(const Steinberg::ViewRect& size) const {
    if (window == 0)
        return true; // the window will be made as large as the view then is
    XResizeWindow(display.get(), window, static_cast<unsigned>(std::max(size.getWidth(), 1)),
                  static_cast<unsigned>(std::max(size.getHeight(), 1)));
    XSync(display.get(), False);
    return true;
}

EditorWindow::EditorWindow(PluginInstance& plugin) : parts(std::make_unique<Parts>()) {
    parts->plugin = plugin.name();
    parts->view =
        ComPointer<Steinberg::IPlugView>::adopt(plugin.controller().createView(Vst::ViewType::kEditor));
    if (!parts->view)
        throw HostError("The plug-in \"" + parts->plugin + "\" gives no editor.");
    parts->loop->resize = [this](const Steinberg::ViewRect& size) { return parts->resizeTo(size); };
    parts->view->setFrame(parts->loop.get());
}

EditorWindow::~EditorWindow() { close(); }

Size EditorWindow::viewSize() const {
    Steinberg::ViewRect size;
    if (parts->view->getSize(&size) != kResultOk)
        throw HostError("The view of \"" + parts->plugin + "\" has no size.");
    return {size.getWidth(), size.getHeight()};
}

bool EditorWindow::resizable() const { return parts->view->canResize() == kResultTrue; }

bool EditorWindow::setScale(float factor) {
    const auto scaled = query<Steinberg::IPlugViewContentScaleSupport>(parts->view.get());
    return scaled && scaled->setContentScaleFactor(factor) == kResultOk;
}

void EditorWindow::open(int x, int y) {
    if (parts->view->isPlatformTypeSupported(Steinberg::kPlatformTypeX11EmbedWindowID) != kResultTrue)
        throw HostError("The view of \"" + parts->plugin + "\" is not for X windows.");
    parts->showWindow(x, y);
    // the interfaces hand windows over as pointers, which an X window is not
    void* const parent = reinterpret_cast<void*>(static_cast<std::uintptr_t>(parts->window));
    if (parts->view->attached(parent, Steinberg::kPlatformTypeX11EmbedWindowID) != kResultOk) {
        parts->closeWindow();
        throw HostError("The view of \"" + parts->plugin + "\" cannot be attached to the window.");
    }
    parts->attached = true;
}

void EditorWindow::close() {
    if (!parts->attached)
        return;
    parts->view->removed();
    parts->attached = false;
    parts->closeWindow();
}

bool EditorWindow::isOpen() const { return parts->attached; }

Size EditorWindow::windowSize() const {
    XWindowAttributes attributes;
    if (!isOpen() || XGetWindowAttributes(parts->display.get(), parts->window, &attributes) == 0)
        throw HostError("The window is not open.");
    return {attributes.width, attributes.height};
}

bool EditorWindow::pumpUntil(const std::function<bool()>& condition, std::chrono::milliseconds longest) {
    const auto end = RunLoop::Clock::now() + longest;
    while (!condition()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - RunLoop::Clock::now());
        if (left <= 0ms)
            return false;
        parts->takeEvents();
        const int descriptor = parts->display ? ConnectionNumber(parts->display.get()) : -1;
        parts->loop->serve(descriptor, std::min(left, longestWait));
    }
    return true;
}

void EditorWindow::pumpFor(std::chrono::milliseconds duration) {
    pumpUntil([] { return false; }, duration);
}

Image EditorWindow::screenshot() const {
    const auto size = windowSize();
    return grab(*parts->display, parts->window, 0, 0, size.width, size.height);
}

std::size_t EditorWindow::servedCount() const {
    return parts->loop->descriptorCount() + parts->loop->timerCount();
}

} // namespace orvane::kestrum::host
