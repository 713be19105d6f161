// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/Sample.h"

namespace orvane::kestrum::track {

std::string_view nameOf(Input input) {
    switch (input) {
    case Input::osc:
        return "osc";
    case Input::openTrack:
        return "opentrack";
    case Input::replay:
        return "replay";
    case Input::demo:
        return "demo";
    }
    return "";
}

std::string Source::kind() const {
    std::string text(nameOf(input));
    if (!family.empty())
        text += " " + std::string(family);
    return text;
}

std::string Source::whose() const { return kind() + " " + std::to_string(address); }

std::string Source::describe() const {
    std::string text = kind();
    if (address == 0)
        return text;
    text += " from ";
    for (int shift = 24; shift >= 0; shift -= 8)
        text += std::to_string(address >> shift & 255) + (shift > 0 ? "." : ":");
    return text + std::to_string(port);
}

} // namespace orvane::kestrum::track
