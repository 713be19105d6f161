// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <sys/types.h>

namespace orvane::kestrum::headlink {

/// What can be seen of the tracker's shared memory from outside.
struct SegmentState {
    enum class Kind {
        missing,
        closed,    ///< The user may not read and write it, as the plug-in has to.
        foreign,   ///< Somebody else's, or others may write to it: the plug-in takes it for missing.
        wrongSize, ///< Not made by the link's server.
        damaged,   ///< Not finished, or not what its library makes: the plug-in takes it for missing.
        noRecord,  ///< A sound segment of something else.
        whole,
    };
    Kind kind = Kind::missing;
    std::uintmax_t size = 0; ///< Bytes.
    ino_t inode = 0;   ///< By which processes that map this very segment are told from those of an older one.
    bool held = false; ///< A living "kestrum track" has made it, whoever's and wherever its status lies.
    bool active = false;
    bool moving = false;    ///< The rotation changed while it was looked at.
    bool locked = false;    ///< The lock was held whenever it was looked at.
    std::size_t record = 0; ///< Where the record lies in a whole segment, bytes from its start.
};

/// Looks for about a third of a second, through the check that the plug-in makes (ipc/SegmentCheck.h). Nothing in the segment
/// is written, its locks included.
SegmentState lookAtSegment(const std::string& name, uid_t user);

/// Tells the instances of a whole segment that nobody drives them any more. Nothing if another has taken its place since.
void switchOff(const std::string& name, const SegmentState& state);

/// Whether a segment can be made there: writing to one that the file system has no memory for would kill the process.
bool roomForSegment(const std::string& folder = "/dev/shm");

/// Marks a segment as that of a living "kestrum track" for the length of its own life.
class SegmentMark {
public:
    explicit SegmentMark(const std::string& name);
    ~SegmentMark();
    SegmentMark(const SegmentMark&) = delete;
    SegmentMark& operator=(const SegmentMark&) = delete;

private:
    int descriptor;
};

} // namespace orvane::kestrum::headlink
