// SPDX-License-Identifier: GPL-3.0-or-later
// A session that is loaded while its window is open. Expected: the window that the same values gave before.
#include "Views.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>

namespace {

using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;

class EditorState : public WindowTest {};

TEST_F(EditorState, ALoadedSessionIsShownAtOnce) {
    auto& opened = open();
    auto& plugin = opened.plugin();
    const auto first = plugin.state();
    const Image firstPicture = opened.look();
    moveEverything(plugin);
    const auto second = plugin.state();
    const Image secondPicture = opened.look();
    plugin.setState(first);
    // where a part is painted again, the reduced background may round to the next level
    EXPECT_LE(compare(opened.look(), firstPicture, 0).largest, 1);
    plugin.setState(second);
    EXPECT_LE(compare(opened.look(), secondPicture, 0).largest, 1);
    EXPECT_EQ(plugin.editCount(), 0u) << "what a session holds is not sent back as an edit";
}

TEST_F(EditorState, ALoadedSessionIsShownByAWindowThatIsOpenedAfterwards) {
    PluginState state;
    Image picture;
    {
        auto& opened = open();
        moveEverything(opened.plugin());
        state = opened.plugin().state();
        picture = opened.look();
    }
    shown.reset();
    auto plugin = makePlugin();
    plugin->setState(state);
    EXPECT_LE(compare(open(std::move(plugin)).look(), picture, 0).largest, 1);
}

TEST_F(EditorState, DamagedAndForeignSessionsLeaveTheWindowAsItIs) {
    auto& opened = open();
    auto& plugin = opened.plugin();
    moveEverything(plugin);
    const Image before = opened.look();
    const auto whole = plugin.state();
    std::mt19937 random(1);
    for (int round = 0; round < 20; ++round) {
        PluginState damaged = whole;
        damaged.controller.clear();
        damaged.component.resize(random() % whole.component.size());
        for (auto& byte : damaged.component)
            if (round % 2 == 1)
                byte = static_cast<std::byte>(random() & 0xff);
        plugin.setState(damaged);
    }
    EXPECT_LE(compare(opened.look(), before, 0).largest, 1);
}

} // namespace
