// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/zmtl/Listeners.h"

#include <functional>

namespace test {

/// A listener that does what the test says.
struct Action {
    std::function<void()> run = [] {};
};

using ActionSet = zmtl::ListenerSet<Action>;
using ActionList = zmtl::ListenerList<Action>;

template <typename Actions>
void notify(Actions& actions) {
    actions.notify([](Action& action) { action.run(); });
}

} // namespace test
