// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/IInputParameterSet.h"
#include "parameters/IMultichannelReverbParameterSet.h"
#include "parameters/IReloadNotifier.h"
#include "parameters/IReloadParameterSet.h"
#include "parameters/IReverbParameterSet.h"
#include "parameters/ISpatialParameterSetView.h"
#include "parameters/VirtualAcoustics.h"

#include <memory>

namespace orvane {

/// Every value that the rendering chain reads, as one object with many faces.
///
/// The last argument of each setter is `notify`: whether listeners hear of a change. Only the structural ones
/// (reverb on, reflections on, custom room, watch source, room type, output format) have listeners: a change
/// of these with `notify` true asks for a reload.
///
/// Thread  values from any thread, wait-free with `notify` false.
class IParameterSet : public virtual IInputParameterSet,
                      public virtual ISpatialParameterSetView,
                      public virtual IReverbParameterSet,
                      public virtual IMultichannelReverbParameterSet,
                      public virtual IReloadNotifier {
public:
    using IReloadParameterSet = orvane::IReloadParameterSet;
    using ReloadListener = orvane::IReloadListener;

    // NOLINTNEXTLINE(bugprone-virtual-near-miss): the flags are numbered, this is not meant to be flag 2
    virtual bool getFlag1() const noexcept ORVANE_REALTIME = 0;
    virtual float getOutputScale() const noexcept ORVANE_REALTIME = 0;

    /// Decibels: the user's master gain with the Scene's offset.
    virtual float getOutputGainDb() const noexcept ORVANE_REALTIME = 0;

    /// Freezes the structural values of this moment. Allocates.
    ///
    /// @throws std::invalid_argument when the output format's number is not in the table.
    virtual std::unique_ptr<orvane::IReloadParameterSet> createReloadParameterSet() const = 0;

    virtual void setEnabled(bool value, bool notify) = 0;
    virtual void setAzimuth(float degrees, bool notify) = 0;
    virtual void setElevation(float degrees, bool notify) = 0;
    virtual void setDirectGainDb(float gainDb, bool notify) = 0;
    virtual void setAzimuthExponent(float exponent, bool notify) = 0;
    virtual void setSpatialValue4(float value, bool notify) = 0;
    virtual void setReflectionsOn(bool value, bool notify) = 0;
    virtual void setReflectionGainDb(float gainDb, bool notify) = 0;
    virtual void setReflectionLowPassFrequency(float hertz, bool notify) = 0;
    virtual void setCustomRoom(bool value, bool notify) = 0;
    virtual void setCeilingDistance(float metres, bool notify) = 0;
    virtual void setFloorDistance(float metres, bool notify) = 0;
    virtual void setRightDistance(float metres, bool notify) = 0;
    virtual void setLeftDistance(float metres, bool notify) = 0;
    virtual void setFrontDistance(float metres, bool notify) = 0;
    virtual void setBackDistance(float metres, bool notify) = 0;
    // NOLINTNEXTLINE(bugprone-virtual-near-miss): the flags are numbered, this is not meant to be flag 2
    virtual void setFlag1(bool value, bool notify) = 0;
    virtual void setWatchSource(bool value, bool notify) = 0;
    virtual void setOutputGainDb(float gainDb, bool notify) = 0;
    virtual void setOutputFormat(IOutputFormat::Format format, bool notify) = 0;
    virtual void setReverbOn(bool value, bool notify) = 0;
    virtual void setRoomType(VirtualAcoustics::Type type, bool notify) = 0;

    /// Calls reloadRequested() on every reload listener, in the order in which they were added.
    virtual void notifyReloadListeners() = 0;

    // What several faces have in common is one operation here, so that a call through the whole set is not
    // ambiguous.
    float getDistance() const noexcept ORVANE_REALTIME override = 0;
    float getDistanceScale() const noexcept ORVANE_REALTIME override = 0;
    float getAttenuationValue() const noexcept ORVANE_REALTIME override = 0;
    float getAttenuationDb() const noexcept ORVANE_REALTIME override = 0;
    float getFloorLevelDb() const noexcept ORVANE_REALTIME override = 0;
    void setDistance(float metres, bool notify) override = 0;
    void setDistanceScale(float factor, bool notify) override = 0;
    void setAttenuationValue(float value, bool notify) override = 0;
};

} // namespace orvane
