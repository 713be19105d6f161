// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/ChoiceTable.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace orvane::kestrum::render {

/// The plug-in's layouts and Scenes with the names its menus show, in the order of its parameters.
const ChoiceTable& layoutChoices();
const ChoiceTable& sceneChoices();

/// The layout that a file of so many channels most likely means; none for counts without a usual layout.
std::optional<std::string_view> usualLayout(std::uint64_t channelCount);

} // namespace orvane::kestrum::render
