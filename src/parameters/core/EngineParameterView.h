// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/ForwardingParameterSet.h"

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

    float getAzimuth() const noexcept override { return frozen ? values.azimuth : live->getAzimuth(); }
    float getElevation() const noexcept override { return frozen ? values.elevation : live->getElevation(); }
    float getDirectGainDb() const noexcept override {
        return frozen ? values.directGainDb : live->getDirectGainDb();
    }
    float getSpatialValue4() const noexcept override {
        return frozen ? values.spatialValue4 : live->getSpatialValue4();
    }
    float getAttenuationValue() const noexcept override {
        return frozen ? values.attenuationValue : live->getAttenuationValue();
    }
    float getReflectionLowPassFrequency() const noexcept override {
        return frozen ? values.reflectionLowPassFrequency : live->getReflectionLowPassFrequency();
    }
    float getDistanceLevel() const noexcept override {
        return frozen ? values.distanceLevel : live->getDistanceLevel();
    }
    float getFarFade() const noexcept override { return frozen ? values.farFade : live->getFarFade(); }
    float getAttenuationDb() const noexcept override {
        return frozen ? values.attenuationDb : live->getAttenuationDb();
    }
    float getAzimuthExponent() const noexcept override {
        return frozen ? values.azimuthExponent : live->getAzimuthExponent();
    }
    float getFloorLevelDb() const noexcept override {
        return frozen ? values.floorLevelDb : live->getFloorLevelDb();
    }
    float getDistance() const noexcept override { return frozen ? values.distance : live->getDistance(); }
    float getDistanceScale() const noexcept override {
        return frozen ? values.distanceScale : live->getDistanceScale();
    }
    float getReflectionGainDb() const noexcept override {
        return frozen ? values.reflectionGainDb : live->getReflectionGainDb();
    }
    float getCeilingDistance() const noexcept override {
        return frozen ? values.ceilingDistance : live->getCeilingDistance();
    }
    float getFloorDistance() const noexcept override {
        return frozen ? values.floorDistance : live->getFloorDistance();
    }
    float getRightDistance() const noexcept override {
        return frozen ? values.rightDistance : live->getRightDistance();
    }
    float getLeftDistance() const noexcept override {
        return frozen ? values.leftDistance : live->getLeftDistance();
    }
    float getFrontDistance() const noexcept override {
        return frozen ? values.frontDistance : live->getFrontDistance();
    }
    float getBackDistance() const noexcept override {
        return frozen ? values.backDistance : live->getBackDistance();
    }
    float getReflectionHighPassFrequency() const noexcept override {
        return frozen ? values.reflectionHighPassFrequency : live->getReflectionHighPassFrequency();
    }
    float getClarity() const noexcept override { return frozen ? values.clarity : live->getClarity(); }
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
        float azimuth = 0;
        float elevation = 0;
        float directGainDb = 0;
        float spatialValue4 = 0;
        float attenuationValue = 0;
        float reflectionLowPassFrequency = 0;
        float distanceLevel = 0;
        float farFade = 0;
        float attenuationDb = 0;
        float azimuthExponent = 0;
        float floorLevelDb = 0;
        float distance = 0;
        float distanceScale = 0;
        float reflectionGainDb = 0;
        float ceilingDistance = 0;
        float floorDistance = 0;
        float rightDistance = 0;
        float leftDistance = 0;
        float frontDistance = 0;
        float backDistance = 0;
        float reflectionHighPassFrequency = 0;
        float clarity = 0;
        float reverbGainDb = 0;
        float reverbLowPassFrequency = 0;
        float reverbDecayPercent = 0;
        float reverbHighPassFrequency = 0;
        float outputGainDb = 0;
    };

    static Values valuesOf(const IParameterSet& set) noexcept ORVANE_REALTIME {
        return {
            .azimuth = set.getAzimuth(),
            .elevation = set.getElevation(),
            .directGainDb = set.getDirectGainDb(),
            .spatialValue4 = set.getSpatialValue4(),
            .attenuationValue = set.getAttenuationValue(),
            .reflectionLowPassFrequency = set.getReflectionLowPassFrequency(),
            .distanceLevel = set.getDistanceLevel(),
            .farFade = set.getFarFade(),
            .attenuationDb = set.getAttenuationDb(),
            .azimuthExponent = set.getAzimuthExponent(),
            .floorLevelDb = set.getFloorLevelDb(),
            .distance = set.getDistance(),
            .distanceScale = set.getDistanceScale(),
            .reflectionGainDb = set.getReflectionGainDb(),
            .ceilingDistance = set.getCeilingDistance(),
            .floorDistance = set.getFloorDistance(),
            .rightDistance = set.getRightDistance(),
            .leftDistance = set.getLeftDistance(),
            .frontDistance = set.getFrontDistance(),
            .backDistance = set.getBackDistance(),
            .reflectionHighPassFrequency = set.getReflectionHighPassFrequency(),
            .clarity = set.getClarity(),
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
