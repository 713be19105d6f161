// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/IIrFile.h"

#include <memory>
#include <string>

namespace orvane {

/// Knows which file belongs to which running rate.
class IIrFileFactory {
public:
    virtual ~IIrFileFactory() = default;

    /// Units   sampleRate in hertz, truncated to an integer.
    /// @param stem begins with a slash; @param dataDirectory has none at its end.
    /// @throws sampleRateNotSupportedException for a rate outside the table.
    virtual std::unique_ptr<IIrFile> create(double sampleRate, const std::string& stem,
                                            const std::string& dataDirectory) const = 0;
};

} // namespace orvane
