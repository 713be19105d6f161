// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "track/Rotation.h"

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvane::kestrum::track {

/// A way in.
enum class Input { osc, openTrack, replay, demo };

/// As options and messages spell it.
std::string_view nameOf(Input input);

/// One sender of one kind of message.
struct Source {
    Input input = Input::demo;
    std::string_view family{}; ///< OSC only: the address, or the addresses that make up one direction.
    std::uint32_t address = 0; ///< IPv4 address of the sender in host order; 0 for what is not sent.
    std::uint16_t port = 0;

    bool operator==(const Source&) const = default;

    /// What is the same for every such sender: "osc /ypr".
    std::string kind() const;

    /// What stays the same when the sender is started again: its kind and its machine.
    std::string whose() const;

    /// Such as "osc /ypr from 127.0.0.1:50123".
    std::string describe() const;
};

/// One direction of the head as a source tells it.
struct Sample {
    Source source;
    Rotation rotation;
};

} // namespace orvane::kestrum::track
