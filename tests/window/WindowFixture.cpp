// SPDX-License-Identifier: GPL-3.0-or-later
#include "WindowFixture.h"

#include <atomic>
#include <exception>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace orvane::kestrum::host::test {

using namespace std::chrono_literals;

namespace {

constexpr auto restTime = 150ms;       ///< A window that shows the same for so long has finished its work.
constexpr auto longestUnrest = 3000ms; ///< One with a blinking caret never rests.

const ParameterInfo& parameterOf(const PluginInstance& plugin, std::string_view name) {
    const auto* const parameter = findParameter(plugin, name);
    if (parameter == nullptr)
        throw std::runtime_error("No parameter \"" + std::string(name) + "\".");
    return *parameter;
}

} // namespace

std::unique_ptr<PluginInstance> makePlugin(unsigned inputs) {
    auto plugin = std::make_unique<PluginInstance>(loadBundle());
    plugin->setChannelCounts(inputs, 2);
    return plugin;
}

double normalized(const PluginInstance& plugin, std::string_view parameter) {
    return plugin.normalizedValue(parameterOf(plugin, parameter).id);
}

std::string text(const PluginInstance& plugin, std::string_view parameter) {
    const auto id = parameterOf(plugin, parameter).id;
    return plugin.textOf(id, plugin.normalizedValue(id));
}

void setAndSend(PluginInstance& plugin, std::string_view parameter, std::string_view value) {
    set(plugin, parameter, value);
    plugin.flushParameters();
}

OpenWindow::OpenWindow(std::unique_ptr<PluginInstance> plugin)
    : instance(std::move(plugin)), editor(*instance), person(windowCorner) {
    person.moveTo({-100, -100}); // no control is hovered over
    editor.open(windowCorner.x, windowCorner.y);
    const auto size = editor.windowSize();
    const Image black(size.width, size.height); // as it rests where the first painting is late
    waitUntil([&] { return person.see({0, 0}, size.width, size.height) != black; });
}

void OpenWindow::act(const std::function<void(Person&)>& actions) {
    std::atomic<bool> done{false};
    std::exception_ptr failure;
    std::thread acting([&] {
        try {
            actions(person);
        } catch (...) {
            failure = std::current_exception();
        }
        done = true;
    });
    editor.pumpUntil([&done] { return done.load(); }, 60s);
    acting.join();
    if (failure)
        std::rethrow_exception(failure);
    look();
}

Image OpenWindow::look() {
    const auto size = editor.windowSize();
    return resting([&] { return person.see({0, 0}, size.width, size.height); });
}

Image OpenWindow::lookAtScreen() {
    return resting([this] { return person.seeScreen(); });
}

Image OpenWindow::resting(const std::function<Image()>& see) {
    Image last = see();
    auto unchangedSince = std::chrono::steady_clock::now();
    editor.pumpUntil(
        [&] {
            Image now = see();
            if (now != last) {
                last = std::move(now);
                unchangedSince = std::chrono::steady_clock::now();
            }
            return std::chrono::steady_clock::now() - unchangedSince > restTime;
        },
        longestUnrest);
    return last;
}

bool OpenWindow::waitUntil(const std::function<bool()>& condition) {
    return editor.pumpUntil(condition, patience);
}

OpenWindow& WindowTest::open(std::unique_ptr<PluginInstance> instance) {
    shown.emplace(std::move(instance));
    return *shown;
}

} // namespace orvane::kestrum::host::test
