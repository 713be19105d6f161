// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/IHrirReader.h"

namespace orvane {

/// Reads the RIFF/WAVE files of the data folder.
///
/// Deliberate: a response of a higher rate is the stored one with zeros between its samples and no
/// anti-imaging filter; the convolver keeps only the bins below the stored Nyquist frequency instead.
///
/// A file with a sample that is not sound (SoundSamples.h) is not readable.
class TenmarshHrirReader final : public IHrirReader {
public:
    void read(const IIrFile& file, std::vector<float>& samples) override;
};

} // namespace orvane
