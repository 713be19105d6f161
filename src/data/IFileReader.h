// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orvane {

/// Takes one response out of a container with a table of offsets.
class IFileReader {
public:
    virtual ~IFileReader() = default;

    /// Shape   [floatCount], interleaved left and right; what the file does not hold stays 0.
    /// @param tableSize entries of the table; @param entry counted from 1.
    /// Errors  wavNotReadableException, the only one.
    virtual std::vector<float> read(const std::string& path, std::uint64_t floatCount,
                                    std::uint32_t tableSize, std::uint32_t entry) const = 0;
};

} // namespace orvane
