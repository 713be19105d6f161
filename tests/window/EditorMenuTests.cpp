// SPDX-License-Identifier: GPL-3.0-or-later
// The selectors by a person's hand: menus and arrows. Expected: the order of the product's tables.
#include "Places.h"
#include "WindowFixture.h"
#include "render/Names.h"

#include <gtest/gtest.h>

#include <cstddef>

namespace {

using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;
namespace render = orvane::kestrum::render;

Image diagramOf(OpenWindow& opened) {
    return cut(opened.look(), diagram.x, diagram.y, diagram.width, diagram.height);
}

class EditorMenus : public WindowTest {};

TEST_F(EditorMenus, TheArrowsStepThroughAllScenesAndWrapAtBothEnds) {
    auto& opened = open();
    const auto& scenes = render::sceneChoices().all();
    setAndSend(opened.plugin(), "scene", scenes.front().name);
    opened.look();
    for (std::size_t step = 1; step <= scenes.size(); ++step) {
        opened.act([](Person& person) {
            person.click(sceneNext.middle());
            person.waitForChange();
        });
        EXPECT_EQ(text(opened.plugin(), "Scenes"), scenes[step % scenes.size()].name);
    }
    opened.act([](Person& person) {
        person.click(scenePrevious.middle());
        person.waitForChange();
    });
    EXPECT_EQ(text(opened.plugin(), "Scenes"), scenes.back().name);
}

TEST_F(EditorMenus, ASceneIsChosenFromItsMenu) {
    auto& opened = open();
    const auto& scenes = render::sceneChoices().all();
    setAndSend(opened.plugin(), "scene", scenes.front().name);
    opened.look();
    opened.act([](Person& person) {
        person.click(scene.middle());
        person.waitForChange();
        person.tapKey(XK_Down);
        person.tapKey(XK_Return);
    });
    EXPECT_EQ(text(opened.plugin(), "Scenes"), scenes[1].name);
}

TEST_F(EditorMenus, AMenuThatIsDismissedChangesNothing) {
    auto& opened = open();
    const Image before = opened.look();
    for (const auto& place : {scene, speakerSetup, help})
        opened.act([&place](Person& person) {
            person.click(place.middle());
            person.waitForChange();
            person.tapKey(XK_Escape);
            person.moveTo({-100, -100});
        });
    // where a part is painted again, the reduced background may round to the next level
    EXPECT_LE(compare(opened.look(), before, 0).largest, 1);
    EXPECT_EQ(opened.plugin().editCount(), 0u);
}

TEST_F(EditorMenus, ALayoutIsChosenFromItsMenuAndItsDiagramShown) {
    auto& opened = open();
    const auto& layouts = render::layoutChoices().all();
    setAndSend(opened.plugin(), "layout", layouts[2].name);
    const Image before = diagramOf(opened);
    opened.act([](Person& person) {
        person.click(speakerSetup.middle());
        person.waitForChange();
        person.tapKey(XK_Down);
        person.tapKey(XK_Return);
    });
    EXPECT_EQ(text(opened.plugin(), "Speaker Layouts"), layouts[3].name);
    EXPECT_NE(diagramOf(opened), before);
}

TEST_F(EditorMenus, LayoutsBeyondTheBusAreSkippedByTheMenuThoughTheHostMaySelectThem) {
    auto& opened = open(makePlugin(2));
    const auto& layouts = render::layoutChoices().all();
    setAndSend(opened.plugin(), "layout", "13.1");
    opened.look();
    EXPECT_EQ(text(opened.plugin(), "Speaker Layouts"), "13.1");
    setAndSend(opened.plugin(), "layout", layouts[3].name); // the last one of two channels
    opened.look();
    opened.act([](Person& person) {
        person.click(speakerSetup.middle());
        person.waitForChange();
        person.tapKey(XK_Down);
        person.tapKey(XK_Return);
    });
    EXPECT_EQ(text(opened.plugin(), "Speaker Layouts"), layouts[0].name)
        << "the next one that fits, from the top";
}

TEST_F(EditorMenus, AnOpenMenuGoesWithTheWindow) {
    auto& opened = open();
    opened.act([](Person& person) {
        person.click(scene.middle());
        person.waitForChange();
    });
    opened.window().close();
    shown.reset();
    Person eye({0, 0});
    EXPECT_EQ(eye.seeScreen(), Image(VirtualDisplay::width, VirtualDisplay::height));
}

} // namespace
