// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace orvane::kestrum::check {

/// The layout that a mix is in. A guess in the wrong channel order would be a wrong check that sounds right, so it is
/// guessed only where a single layout has so many channels.
/// @param named what the user says, if anything.
/// @return the name in the table of layouts.
/// @throws CheckError when several layouts fit and none is named, or the named one has another channel count;
///         render::RenderError when there is none of that name.
std::string chooseLayout(std::uint64_t channelCount, const std::optional<std::string>& named);

} // namespace orvane::kestrum::check
