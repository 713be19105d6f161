// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/IHrirReader.h"

namespace orvane {

/// Reads the set from its WAV file; at a doubled or fourfold rate the stored frames are spread with zeros
/// between, without an anti-imaging filter.
class TenmarshHrirReader final : public IHrirReader {
public:
    void read(const IIrFile& file, std::vector<float>& samples) override;
};

} // namespace orvane
