// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "doctor/Places.h"

#include <cstdint>
#include <string>

namespace orvane::kestrum::doctor {

/// What can be seen of the tracker's shared memory from outside.
struct SegmentState {
    enum class Kind {
        missing,
        closed,    ///< The user may not read and write it, as the plug-in has to.
        wrongSize, ///< Not made by the link's server.
        damaged,   ///< Looking for the record crashes or hangs.
        noRecord,  ///< A sound segment of something else.
        whole,
    };
    Kind kind = Kind::missing;
    std::uintmax_t size = 0; ///< Bytes.
    bool active = false;
    bool moving = false; ///< The rotation changed while it was looked at.
    bool locked = false; ///< The lock was held whenever it was looked at.
};

/// Looks for about a third of a second. Nothing in the segment is written, its locks included, and whatever may hang or crash
/// does so in a child process.
SegmentState lookAtSegment(const std::string& name, uid_t user);

} // namespace orvane::kestrum::doctor
