// SPDX-License-Identifier: GPL-3.0-or-later
// The two kinds of tables that people write: the first byte says which, a movement of the head or an automation.
#include "Fuzzed.h"

#include "render/Automation.h"
#include "render/RenderError.h"
#include "render/StandInPlugin.h"
#include "track/Replay.h"
#include "track/TrackError.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace {

void readMovement(std::string_view text) {
    using namespace orvane::kestrum::track;
    static test::FileInMemory content;
    content.replace(text);
    std::vector<ReplayLine> lines;
    try {
        lines = readReplay(content.path());
    } catch (const TrackError& error) {
        test::promiseSentence(error.what());
        return;
    }
    test::promise(!lines.empty(), "a movement has a line");
    test::promise(std::ranges::is_sorted(lines, {}, &ReplayLine::seconds), "time runs forwards");
    for (const ReplayLine& line : lines) {
        const Rotation rotation = rotationOf(line.angles);
        test::promise(std::isfinite(rotation.w) && std::isfinite(rotation.x) && std::isfinite(rotation.y) &&
                          std::isfinite(rotation.z),
                      "every line is a direction");
    }
}

void readAutomation(std::string_view text) {
    namespace render = orvane::kestrum::render;
    static const render::test::StandInPlugin plugin;
    static const render::ChoiceTable layouts = render::test::standInLayouts();
    static const render::ChoiceTable scenes = render::test::standInScenes();
    std::vector<render::AutomationEvent> events;
    try {
        std::istringstream stream{std::string(text)};
        events = render::resolveAutomation(render::parseAutomation(stream),
                                           render::Controls(plugin, layouts, scenes), 48000);
    } catch (const render::RenderError& error) {
        test::promiseSentence(error.what());
        return;
    }
    test::promise(std::ranges::is_sorted(events, {}, &render::AutomationEvent::frame),
                  "changes come in their order");
    for (const render::AutomationEvent& event : events)
        test::promise(event.value.normalized >= 0 && event.value.normalized <= 1,
                      "values lie in their range");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    test::Taken taken({bytes, count});
    if (taken.byte() % 2 == 0)
        readMovement(taken.rest());
    else
        readAutomation(taken.rest());
    return 0;
}
