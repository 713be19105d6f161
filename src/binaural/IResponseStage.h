// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IInPlaceProcessor.h"
#include "binaural/ResponseKey.h"

namespace orvane {

/// A stage that knows beforehand what it will draw, so that nothing has to be drawn twice.
///
///     describe(key); draw(buffer)   is the same, bit for bit, as   process(buffer)
///
/// process() stays the definition: it draws everything, whatever was drawn before. A user keeps to one of the
/// two ways, since both move the stage's reflections on.
///
/// Thread  audio thread only.
class IResponseStage : public IInPlaceProcessor {
public:
    /// Takes the present values and appends everything that draw() will read. Repeated with the same values it
    /// gives the same key.
    virtual void describe(ResponseKey& key) ORVANE_REALTIME = 0;

    /// Draws what was described last.
    ///
    /// Shape   buffer [2][response], as earlier stages left it, all of it +0 for the first one.
    /// @return false when the set of responses was replaced since describe(), so that what is drawn may not be
    ///         what the key says.
    virtual bool draw(SampleBuffer& buffer) ORVANE_REALTIME = 0;
};

} // namespace orvane
