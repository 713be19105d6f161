// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/IPlugin.h"
#include "render/ChoiceTable.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace orvane::kestrum::render {

/// A parameter value as the plug-in's interface takes it.
struct ControlValue {
    std::uint32_t id = 0;
    double normalized = 0;
    bool rebuilds = false;          ///< The plug-in builds a new engine for it, on the clock.
    const Choice* layout = nullptr; ///< The layout's entry in its table; null for any other value.
};

/// Turns names and values as people write them into parameter values of the plug-in. Ranges and entries are
/// read from the plug-in's own texts, so there is no second copy of them here; the tables add the names its
/// menus show.
class Controls {
public:
    Controls(const host::IPlugin& plugin, const ChoiceTable& layouts, const ChoiceTable& scenes)
        : plugin(plugin), layouts(layouts), scenes(scenes) {}

    /// @param parameter the host's name ("Master Gain") or the option's ("gain"), upper or lower case.
    /// @param value an entry's name, or a number in the parameter's own unit.
    /// @throws RenderError when there is no such parameter or entry, or the number lies outside the range.
    ControlValue resolve(std::string_view parameter, std::string_view value) const;

    /// @return what the plug-in holds at present, in its own words.
    std::string currentText(std::string_view parameter) const;

private:
    const host::ParameterInfo& find(std::string_view parameter) const;

    const host::IPlugin& plugin;
    const ChoiceTable& layouts;
    const ChoiceTable& scenes;
};

/// @return the number that the whole of `text` spells in the C locale.
/// @throws RenderError naming `what` otherwise, also for infinities and not-a-number.
double parseNumber(std::string_view text, std::string_view what);

} // namespace orvane::kestrum::render
