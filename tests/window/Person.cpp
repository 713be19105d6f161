// SPDX-License-Identifier: GPL-3.0-or-later
#include "Person.h"

#include "host/X11.h"

#include <X11/extensions/XTest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace orvane::kestrum::host::test {

namespace {

using namespace std::chrono_literals;

constexpr auto handPause = 12ms; ///< Nobody presses and releases within the same millisecond.
constexpr auto restTime = 150ms;
constexpr auto longestWait = 5s;
constexpr int dragStep = 3; ///< Pixels between two positions of a drag.

} // namespace

struct Person::Connection {
    DisplayPointer display = openDisplay();
};

Person::Person(Point windowCorner) : connection(std::make_unique<Connection>()), origin(windowCorner) {}
Person::~Person() = default;

void Person::settle() {
    XSync(connection->display.get(), False);
    std::this_thread::sleep_for(handPause);
}

void Person::moveTo(Point point) {
    XTestFakeMotionEvent(connection->display.get(), -1, origin.x + point.x, origin.y + point.y, CurrentTime);
    settle();
}

void Person::press(unsigned button) {
    remembered = seeScreen();
    XTestFakeButtonEvent(connection->display.get(), button, True, CurrentTime);
    settle();
}

void Person::release(unsigned button) {
    XTestFakeButtonEvent(connection->display.get(), button, False, CurrentTime);
    settle();
}

void Person::click(Point point, unsigned button) {
    moveTo(point);
    press(button);
    release(button);
}

void Person::doubleClick(Point point) {
    click(point);
    click(point);
}

void Person::drag(Point from, Point to) {
    moveTo(from);
    press();
    const int distance = std::max(std::abs(to.x - from.x), std::abs(to.y - from.y));
    const int steps = std::max(1, distance / dragStep);
    for (int step = 1; step <= steps; ++step)
        moveTo({from.x + (to.x - from.x) * step / steps, from.y + (to.y - from.y) * step / steps});
    release();
}

void Person::wheel(Point point, int notches) {
    moveTo(point);
    const unsigned button = notches > 0 ? 4 : 5; // the protocol's buttons for away and towards
    for (int notch = 0; notch < std::abs(notches); ++notch) {
        press(button);
        release(button);
    }
}

void Person::keyDown(Key key) {
    XTestFakeKeyEvent(connection->display.get(), XKeysymToKeycode(connection->display.get(), key), True,
                      CurrentTime);
    settle();
}

void Person::keyUp(Key key) {
    XTestFakeKeyEvent(connection->display.get(), XKeysymToKeycode(connection->display.get(), key), False,
                      CurrentTime);
    settle();
}

void Person::tapKey(Key key) {
    keyDown(key);
    keyUp(key);
}

void Person::type(std::string_view text) {
    for (const char letter : text)
        tapKey(static_cast<Key>(letter)); // these signs' symbols are their own codes
}

void Person::waitForChange() {
    const auto end = std::chrono::steady_clock::now() + longestWait;
    Image last = seeScreen();
    auto unchangedSince = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(handPause);
        Image now = seeScreen();
        if (now != last) {
            last = std::move(now);
            unchangedSince = std::chrono::steady_clock::now();
        }
        if (last != remembered && std::chrono::steady_clock::now() - unchangedSince > restTime)
            return;
    }
    throw std::runtime_error("Nothing has changed on the screen.");
}

Image Person::see(Point corner, int width, int height) {
    return grab(*connection->display, DefaultRootWindow(connection->display.get()), origin.x + corner.x,
                origin.y + corner.y, width, height);
}

Image Person::seeScreen() {
    Display& screen = *connection->display;
    return grab(screen, DefaultRootWindow(&screen), 0, 0, DisplayWidth(&screen, DefaultScreen(&screen)),
                DisplayHeight(&screen, DefaultScreen(&screen)));
}

} // namespace orvane::kestrum::host::test
