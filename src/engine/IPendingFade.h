// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IEngine.h"

#include <memory>

namespace orvane {

/// A crossfade that can be called off as long as it has not begun.
///
/// A host that is prepared but sends no blocks would otherwise pile up one wrapper per structural change:
/// whoever builds the next engine takes the old one out of the waiting wrapper and fades from that instead.
///
/// Thread  builders, one at a time; safe against the audio thread starting the fade at the same moment.
class IPendingFade {
public:
    virtual ~IPendingFade() = default;

    /// Keeps the fade from beginning: until resumeFade() the audio thread hears the old engine alone.
    /// @return the engine that the fade would start from; null when the fade has begun already.
    virtual std::shared_ptr<IEngine> holdFade() noexcept = 0;

    /// Lets a held fade begin after all.
    virtual void resumeFade() noexcept = 0;
};

} // namespace orvane
