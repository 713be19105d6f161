// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

namespace orvane {

class SampleBuffer;

/// Fades between two versions of one block.
class ICrossFader {
public:
    virtual ~ICrossFader() = default;

    /// Fades `output`, which holds the new version, in from the old version in buffer().
    /// Thread  audio thread only.
    virtual void apply(SampleBuffer& output) ORVANE_REALTIME = 0;

    /// Where the old version is written, [channels][length].
    virtual SampleBuffer& buffer() ORVANE_REALTIME = 0;
};

} // namespace orvane
