// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ChannelOrder.h"
#include "base/ISupportedLayouts.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <functional>
#include <string_view>
#include <vector>

namespace orvane::kestrum {

/// The host's names of a bus's channels, in the order in which they come to processBlock(). The framework has names of its
/// own, and an order that follows them; these are the ones that the host gave. Empty for a channel without a name.
std::vector<std::string_view> hostNames(const juce::AudioChannelSet& bus);

/// The table of layouts for the engines, each with the order in which the host's bus feeds it. An engine keeps the order of
/// its own layout, so that a crossfade between two layouts hears each on its loudspeakers.
///
/// Thread  followBus() on the host's setup thread; everything else any.
class BusLayouts final : public core::ISupportedLayouts {
public:
    /// @param table is copied.
    explicit BusLayouts(const core::ISupportedLayouts& table);

    /// Every layout takes its channels from now on as this bus names them.
    void followBus(const juce::AudioChannelSet& bus);

    void forEach(std::function<void(const Properties&)> visit) const override;
    const Properties& get(std::uint32_t id) const override;

private:
    std::vector<Properties> layouts;
    std::vector<ChannelOrder> orders; ///< One per layout; never resized, the engines point into it.
};

} // namespace orvane::kestrum
