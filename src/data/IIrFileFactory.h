// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/IIrFile.h"

#include <memory>
#include <string>

namespace orvane {

/// Knows which file of the data folder belongs to which running rate.
class IIrFileFactory {
public:
    virtual ~IIrFileFactory() = default;

    /// @param sampleRate hertz; fractions are cut off.
    /// @param stem begins with "/": "/OVNdata12" for head-related, "/OVNdata51" for reverb responses.
    /// @param dataDirectory without a separator at its end.
    /// @throws sampleRateNotSupportedException; nothing is opened, so no file is missed here.
    virtual std::unique_ptr<IIrFile> create(double sampleRate, const std::string& stem,
                                            const std::string& dataDirectory) const = 0;
};

} // namespace orvane
