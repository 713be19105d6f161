// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/Controls.h"

#include "render/RenderError.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <sstream>
#include <utility>

namespace orvane::kestrum::render {

namespace {

constexpr std::string_view layoutParameter = "Speaker Layouts";
constexpr std::string_view sceneParameter = "Scenes";

/// The command's short names and the host's long ones.
constexpr std::array<std::pair<std::string_view, std::string_view>, 4> shortNames{{
    {"layout", layoutParameter},
    {"scene", sceneParameter},
    {"rotation", "Head Rotation"},
    {"gain", "Master Gain"},
}};

std::string_view longName(std::string_view parameter) {
    for (const auto& [shortName, name] : shortNames)
        if (equalIgnoringCase(parameter, shortName))
            return name;
    return parameter;
}

std::string shortest(double number) {
    std::ostringstream text;
    text << number;
    return text.str();
}

} // namespace

double parseNumber(std::string_view text, std::string_view what) {
    double number = 0;
    const char* const end = text.data() + text.size();
    const char* const begin = text.starts_with('+') ? text.data() + 1 : text.data();
    const auto [stop, error] = std::from_chars(begin, end, number);
    if (error != std::errc{} || stop != end || !std::isfinite(number))
        throw RenderError("\"" + std::string(text) + "\" is no number for " + std::string(what) +
                          ": write one such as 2.5.");
    return number;
}

const host::ParameterInfo& Controls::find(std::string_view parameter) const {
    const std::string_view name = longName(parameter);
    for (const auto& info : plugin.parameters())
        if (equalIgnoringCase(info.name, name))
            return info;
    std::string message = "The plug-in has no parameter \"" + std::string(parameter) + "\"; it has: ";
    for (const auto& info : plugin.parameters())
        message += (&info == plugin.parameters().data() ? "\"" : ", \"") + info.name + "\"";
    throw RenderError(message + ".");
}

ControlValue Controls::resolve(std::string_view parameter, std::string_view value) const {
    const host::ParameterInfo& info = find(parameter);
    const bool layout = info.name == layoutParameter;
    const bool scene = info.name == sceneParameter;
    if (info.stepCount > 0) {
        const Choice* const choice = layout || scene ? &(layout ? layouts : scenes).find(value) : nullptr;
        const std::string entry = choice != nullptr ? choice->name : std::string(value);
        for (std::int32_t step = 0; step <= info.stepCount; ++step) {
            const double normalized = static_cast<double>(step) / info.stepCount;
            if (equalIgnoringCase(plugin.textOf(info.id, normalized), entry))
                return {info.id, normalized, layout || scene, layout ? choice : nullptr};
        }
        throw RenderError("The plug-in's parameter \"" + info.name + "\" has no entry \"" + entry +
                          "\": the bundle is of another version than this program, so build both anew.");
    }
    const double low = parseNumber(plugin.textOf(info.id, 0), "the lower end of " + info.name);
    const double high = parseNumber(plugin.textOf(info.id, 1), "the upper end of " + info.name);
    const double number = parseNumber(value, info.name);
    if (number < low || number > high)
        throw RenderError(info.name + " " + std::string(value) + " lies outside its range: choose " +
                          shortest(low) + " to " + shortest(high) + ".");
    return {info.id, (number - low) / (high - low), false, nullptr};
}

std::string Controls::currentText(std::string_view parameter) const {
    const host::ParameterInfo& info = find(parameter);
    return plugin.textOf(info.id, plugin.normalizedValue(info.id));
}

} // namespace orvane::kestrum::render
