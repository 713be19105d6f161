// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace rawhost {

inline constexpr std::size_t mostChannels = 16;
inline constexpr std::size_t namedArrangementCount = 77;

/// A set of speakers as a host names its bus: one bit per speaker, channels in the order of the bits.
struct Arrangement {
    std::string name;
    std::uint64_t speakers = 0;

    std::size_t channelCount() const;
    /// The interfaces' short names, by channel: "L", "R", "Lfe".
    std::vector<std::string_view> channelNames() const;

    friend std::ostream& operator<<(std::ostream& stream, const Arrangement& bus) {
        return stream << bus.name;
    }
};

/// Every arrangement that the interfaces' headers name, up to 16 channels; some have two names.
std::span<const Arrangement> namedArrangements();

/// What hosts send that only count: the lowest bits.
Arrangement lowBitArrangement(std::size_t channels);

/// The named ones, then the low bits of 1 to 16 channels.
std::vector<Arrangement> allArrangements();

} // namespace rawhost
