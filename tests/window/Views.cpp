// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views.h"

#include "Places.h"
#include "render/Names.h"

#include <cmath>
#include <numbers>

namespace orvane::kestrum::host::test {

namespace {

constexpr unsigned everyChannel = 16;

/// The window with these values, set as a host sets them.
std::function<Image(OpenWindow&)> window(std::string layout, std::string sceneName) {
    return [layout = std::move(layout), sceneName = std::move(sceneName)](OpenWindow& opened) {
        setAndSend(opened.plugin(), "layout", layout);
        setAndSend(opened.plugin(), "scene", sceneName);
        return opened.look();
    };
}

/// The window with a menu open in front of it, and so much of the screen above it as a high menu takes.
std::function<Image(OpenWindow&)> menuAt(Point point, int above = 0) {
    return [point, above](OpenWindow& opened) {
        Image seen;
        opened.act([&](Person& person) {
            person.click(point);
            person.waitForChange();
            seen = person.see({0, -above}, windowWidth, windowHeight + above);
            person.tapKey(XK_Escape);
        });
        return seen;
    };
}

Image everyScene(OpenWindow& opened) {
    ContactSheet sheet(4, 4, windowWidth / 3, windowHeight / 3);
    setAndSend(opened.plugin(), "layout", "7.1.4");
    for (const auto& choice : render::sceneChoices().all()) {
        setAndSend(opened.plugin(), "scene", choice.name);
        sheet.add(shrink(opened.look(), 3));
    }
    return sheet.image();
}

Image everyLayout(OpenWindow& opened) {
    ContactSheet sheet(4, 8, diagram.width / 3, diagram.height / 3);
    for (const auto& choice : render::layoutChoices().all()) {
        setAndSend(opened.plugin(), "layout", choice.name);
        sheet.add(shrink(cut(opened.look(), diagram.x, diagram.y, diagram.width, diagram.height), 3));
    }
    return sheet.image();
}

Image warning(OpenWindow& opened) {
    opened.plugin().prepare(22050, 256, ProcessMode::realtime);
    return opened.look();
}

Image movedControls(OpenWindow& opened) {
    moveEverything(opened.plugin());
    return opened.look();
}

} // namespace

void moveEverything(PluginInstance& plugin) {
    setAndSend(plugin, "layout", "9.1.6");
    setAndSend(plugin, "scene", "Cinema");
    setAndSend(plugin, "ambience", "85");
    setAndSend(plugin, "focus", "-60");
    setAndSend(plugin, "rotation", "-75");
    setAndSend(plugin, "gain", "-12.5");
}

const std::vector<View>& plainViews() {
    static const std::vector<View> views{
        {"mix-room", everyChannel, window("7.1.4", "Mix Room")},
        {"stereo-analytic-dry", 2, window("2.0 +/-30°", "Analytic Dry")},
        {"club", 6, window("5.1 ITU", "Club")},
        {"kitchen-too-narrow-bus", 2, window("13.1", "Kitchen")},
        {"moved-controls", everyChannel, movedControls},
        {"speaker-menu", 8, menuAt(speakerSetup.middle(), 166)},
        {"scene-menu", everyChannel, menuAt(scene.middle())},
        {"help-menu", everyChannel, menuAt(help.middle())},
        {"warning", everyChannel, warning},
        {"scenes", everyChannel, everyScene},
        {"layouts", everyChannel, everyLayout},
    };
    return views;
}

HeadRotationMatrix turnedBy(float degrees) {
    const float angle = degrees * std::numbers::pi_v<float> / 180;
    const float c = std::cos(angle), s = std::sin(angle);
    return {c, 0, s, 0, 0, 1, 0, 0, -s, 0, c, 0, 0, 0, 0, 1};
}

Image takeTrackedDial(OpenWindow& opened, OrvaneIPC::IHeadRotationServer& tracker, float degrees) {
    const auto shows = [&opened](float wanted) {
        return [&opened, wanted] {
            const double shown = normalized(opened.plugin(), "Head Rotation") * 360 - 180;
            return std::abs(shown - static_cast<double>(wanted)) < 0.6;
        };
    };
    tracker.setRotation(turnedBy(degrees));
    tracker.setActive(true);
    EXPECT_TRUE(opened.waitUntil(shows(degrees)));
    Image seen = opened.look();
    tracker.setActive(false);
    EXPECT_TRUE(opened.waitUntil(shows(0)));
    return seen;
}

Image take(const View& view) {
    OpenWindow opened(makePlugin(view.inputs));
    return view.take(opened);
}

} // namespace orvane::kestrum::host::test
