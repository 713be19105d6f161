// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/ForwardingParameterSet.h"
#include "parameters/core/SpeakerValues.h"

namespace orvane::kestrum::core {

/// The parameter set as one engine sees it: the live one, until freeze() makes every value that an engine
/// renders with stay what it is. The head rotation is always live, and so is everything structural, which an
/// engine reads when it is built.
///
/// An engine that is being faded out thus keeps its own sound while the next Scene's values go into the set.
///
/// Thread  getters and freeze() on the thread that runs the engine: what is frozen is guarded by nothing.
class EngineParameterView final : public ForwardingParameterSet {
public:
    /// @param parameterSet borrowed, outlives this, never null.
    explicit EngineParameterView(IParameterSet* parameterSet) noexcept
        : ForwardingParameterSet(parameterSet), live(parameterSet) {}

    /// Keeps the present values for good. A second call changes nothing.
    void freeze() noexcept ORVANE_REALTIME {
        if (frozen)
            return;
        values = valuesOf(*live);
        frozen = true;
    }

    float getAzimuth() const noexcept override {
        return frozen ? values.speaker.azimuth : live->getAzimuth();
    }
    float getElevation() const noexcept override {
        return frozen ? values.speaker.elevation : live->getElevation();
    }
    float getDirectGainDb() const noexcept override {
        return frozen ? values.speaker.directGainDb : live->getDirectGainDb();
    }
    float getSpatialValue4() const noexcept override {
        return frozen ? values.speaker.spatialValue4 : live->getSpatialValue4();
    }
    float getAttenuationValue() const noexcept override {
        return frozen ? values.speaker.attenuationValue : live->getAttenuationValue();
    }
    float getReflectionLowPassFrequency() const noexcept override {
        return frozen ? values.speaker.reflectionLowPassFrequency : live->getReflectionLowPassFrequency();
    }
    float getDistanceLevel() const noexcept override {
        return frozen ? values.speaker.distanceLevel : live->getDistanceLevel();
    }
    float getFarFade() const noexcept override {
        return frozen ? values.speaker.farFade : live->getFarFade();
    }
    float getAttenuationDb() const noexcept override {
        return frozen ? values.speaker.attenuationDb : live->getAttenuationDb();
    }
    float getAzimuthExponent() const noexcept override {
        return frozen ? values.speaker.azimuthExponent : live->getAzimuthExponent();
    }
    float getFloorLevelDb() const noexcept override {
        return frozen ? values.speaker.floorLevelDb : live->getFloorLevelDb();
    }
    float getDistance() const noexcept override {
        return frozen ? values.speaker.distance : live->getDistance();
    }
    float getDistanceScale() const noexcept override {
        return frozen ? values.speaker.distanceScale : live->getDistanceScale();
    }
    float getReflectionGainDb() const noexcept override {
        return frozen ? values.speaker.reflectionGainDb : live->getReflectionGainDb();
    }
    float getCeilingDistance() const noexcept override {
        return frozen ? values.speaker.ceilingDistance : live->getCeilingDistance();
    }
    float getFloorDistance() const noexcept override {
        return frozen ? values.speaker.floorDistance : live->getFloorDistance();
    }
    float getRightDistance() const noexcept override {
        return frozen ? values.speaker.rightDistance : live->getRightDistance();
    }
    float getLeftDistance() const noexcept override {
        return frozen ? values.speaker.leftDistance : live->getLeftDistance();
    }
    float getFrontDistance() const noexcept override {
        return frozen ? values.speaker.frontDistance : live->getFrontDistance();
    }
    float getBackDistance() const noexcept override {
        return frozen ? values.speaker.backDistance : live->getBackDistance();
    }
    float getReflectionHighPassFrequency() const noexcept override {
        return frozen ? values.speaker.reflectionHighPassFrequency : live->getReflectionHighPassFrequency();
    }
    float getClarity() const noexcept override {
        return frozen ? values.speaker.clarity : live->getClarity();
    }
    float getReverbGainDb() const noexcept override {
        return frozen ? values.reverbGainDb : live->getReverbGainDb();
    }
    float getReverbLowPassFrequency() const noexcept override {
        return frozen ? values.reverbLowPassFrequency : live->getReverbLowPassFrequency();
    }
    float getReverbDecayPercent() const noexcept override {
        return frozen ? values.reverbDecayPercent : live->getReverbDecayPercent();
    }
    float getReverbHighPassFrequency() const noexcept override {
        return frozen ? values.reverbHighPassFrequency : live->getReverbHighPassFrequency();
    }
    float getOutputGainDb() const noexcept override {
        return frozen ? values.outputGainDb : live->getOutputGainDb();
    }

    void setReflectionHighPassFrequency(float hertz, bool notify) override {
        live->setReflectionHighPassFrequency(hertz, notify);
    }
    void setReverbHighPassFrequency(float hertz, bool notify) override {
        live->setReverbHighPassFrequency(hertz, notify);
    }
    void setClarity(float exponent, bool notify) override { live->setClarity(exponent, notify); }
    void reload() override { live->reload(); }

private:
    struct Values {
        SpeakerValues speaker;
        float reverbGainDb = 0;
        float reverbLowPassFrequency = 0;
        float reverbDecayPercent = 0;
        float reverbHighPassFrequency = 0;
        float outputGainDb = 0;
    };

    static Values valuesOf(const IParameterSet& set) noexcept ORVANE_REALTIME {
        return {
            .speaker = speakerValuesOf(set),
            .reverbGainDb = set.getReverbGainDb(),
            .reverbLowPassFrequency = set.getReverbLowPassFrequency(),
            .reverbDecayPercent = set.getReverbDecayPercent(),
            .reverbHighPassFrequency = set.getReverbHighPassFrequency(),
            .outputGainDb = set.getOutputGainDb(),
        };
    }

    IParameterSet* live;
    bool frozen = false;
    Values values; ///< Read only while frozen.
};

} // namespace orvane::kestrum::core
