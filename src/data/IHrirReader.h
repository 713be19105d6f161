// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

namespace orvane {

class IIrFile;

/// Reads a whole set of head-related responses.
class IHrirReader {
public:
    virtual ~IHrirReader() = default;

    /// Shape   samples is resized to [responseCount][length][2]: response after response, frames interleaved.
    /// Thread  one at a time; reads a file.
    /// @throws the exceptions of data/DataFileExceptions.h; `samples` is then without meaning.
    virtual void read(const IIrFile& file, std::vector<float>& samples) = 0;
};

} // namespace orvane
