// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/Image.h"

#include <X11/keysym.h>

#include <memory>
#include <string_view>

namespace orvane::kestrum::host::test {

struct Point {
    int x = 0;
    int y = 0;
};

/// Hands and eyes before the display: moves the real pointer and presses real keys, over a connection of its own as
/// another program would. Points are pixels from the upper left corner that it was told of.
///
/// Thread  any, one at a time; a different one than the window's where the window waits inside an event, as a menu
///         does that is shown synchronously.
class Person {
public:
    using Key = unsigned long; ///< The XK_ constants.

    explicit Person(Point windowCorner);
    Person(const Person&) = delete;
    Person& operator=(const Person&) = delete;
    ~Person();

    void moveTo(Point point);
    void press(unsigned button = 1);
    void release(unsigned button = 1);
    void click(Point point, unsigned button = 1);
    void doubleClick(Point point);
    /// In steps of some pixels, as a hand does it.
    void drag(Point from, Point to);
    /// Positive notches turn away from the person.
    void wheel(Point point, int notches);

    void keyDown(Key key);
    void keyUp(Key key);
    void tapKey(Key key);
    /// Digits, small letters, minus and point.
    void type(std::string_view text);

    /// Waits until the screen shows something else than before a button was last pressed, and rests again.
    /// @throws std::runtime_error when nothing happens.
    void waitForChange();

    /// What the screen shows, menus in front of the window included; may lie partly outside the window.
    Image see(Point corner, int width, int height);
    Image seeScreen();

private:
    void settle(); ///< Lets the display take the gesture before the next one.

    struct Connection; // the display's own headers would put macros upon the tests
    std::unique_ptr<Connection> connection;
    Point origin;
    Image remembered; ///< The screen before the last press of a button.
};

} // namespace orvane::kestrum::host::test
