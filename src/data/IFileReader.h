// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orvane {

/// Takes one response out of a container of many.
class IFileReader {
public:
    virtual ~IFileReader() = default;

    /// Shape   result [floatCount], stereo frames interleaved left, right; zeros where the file ends early.
    /// Units   entry counts from 1.
    /// @param tableSize entries of the container's table, read or not.
    /// @throws wavNotReadableException, whatever went wrong.
    virtual std::vector<float> read(const std::string& path, std::uint64_t floatCount,
                                    std::uint32_t tableSize, std::uint32_t entry) const = 0;
};

} // namespace orvane
