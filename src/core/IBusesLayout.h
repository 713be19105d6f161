// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum::core {

class ISupportedLayouts;

/// What views have to know of the plug-in's buses.
///
/// Thread  listeners come and go on the message thread and are called on the one on which the host changes buses, which
///         may be at the same time; zmtl::Listeners tells what a removal means.
class IBusesLayout {
public:
    class BusesLayoutListener {
    public:
        virtual ~BusesLayoutListener() = default;

        /// @param inputChannelCount channels of the main input bus from now on.
        virtual void busesLayoutChanged(int inputChannelCount) = 0;
    };

    virtual ~IBusesLayout() = default;

    /// @param listener borrowed until it is removed; a second adding changes nothing.
    virtual void addBusesLayoutListener(BusesLayoutListener* listener) = 0;
    virtual void removeBusesLayoutListener(BusesLayoutListener* listener) = 0;

    /// The layout table, which lives as long as this object.
    virtual ISupportedLayouts* getSupportedLayouts() = 0;

    /// Channels of the main input bus, 0 when there is none.
    virtual int getNumberOfInputChannels() const = 0;
};

} // namespace orvane::kestrum::core
