// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace orvane {

/// The virtual rooms by number.
struct VirtualAcoustics {
    /// A room id: selects the reflection preset and the reverb response alike. 0 is no room at all; the rooms
    /// of the product are 1 to 47. The numbers have no names.
    enum class Type : std::uint32_t {};
};

} // namespace orvane
