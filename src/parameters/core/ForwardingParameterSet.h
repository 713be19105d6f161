// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/IParameterSet.h"

#include <memory>

namespace orvane::kestrum::core {

/// Hands every value of the general set on to another set, both ways. What only this product has is left to
/// those who derive from it.
///
/// Thread  see orvane::IParameterSet.
class ForwardingParameterSet : public virtual IParameterSet {
public:
    void addReloadListener(IReloadListener* listener) override { parameterSet->addReloadListener(listener); }
    void removeReloadListener(IReloadListener* listener) override {
        parameterSet->removeReloadListener(listener);
    }
    void notifyReloadListeners() override { parameterSet->notifyReloadListeners(); }
    std::unique_ptr<orvane::IReloadParameterSet> createReloadParameterSet() const override {
        return parameterSet->createReloadParameterSet();
    }
    float getDistance() const noexcept override { return parameterSet->getDistance(); }
    float getDistanceScale() const noexcept override { return parameterSet->getDistanceScale(); }
    float getAttenuationValue() const noexcept override { return parameterSet->getAttenuationValue(); }
    bool getFlag2() const noexcept override { return parameterSet->getFlag2(); }
    float getInputLimit() const noexcept override { return parameterSet->getInputLimit(); }
    float getAzimuth() const noexcept override { return parameterSet->getAzimuth(); }
    float getElevation() const noexcept override { return parameterSet->getElevation(); }
    float getDirectGainDb() const noexcept override { return parameterSet->getDirectGainDb(); }
    float getSpatialValue4() const noexcept override { return parameterSet->getSpatialValue4(); }
    float getReflectionLowPassFrequency() const noexcept override {
        return parameterSet->getReflectionLowPassFrequency();
    }
    float getDistanceLevel() const noexcept override { return parameterSet->getDistanceLevel(); }
    float getFarFade() const noexcept override { return parameterSet->getFarFade(); }
    float getAttenuationDb() const noexcept override { return parameterSet->getAttenuationDb(); }
    HeadRotationMatrix getHeadRotation() const noexcept override { return parameterSet->getHeadRotation(); }
    float getAzimuthExponent() const noexcept override { return parameterSet->getAzimuthExponent(); }
    float getFloorLevelDb() const noexcept override { return parameterSet->getFloorLevelDb(); }
    float getReflectionGainDb() const noexcept override { return parameterSet->getReflectionGainDb(); }
    float getCeilingDistance() const noexcept override { return parameterSet->getCeilingDistance(); }
    float getFloorDistance() const noexcept override { return parameterSet->getFloorDistance(); }
    float getRightDistance() const noexcept override { return parameterSet->getRightDistance(); }
    float getLeftDistance() const noexcept override { return parameterSet->getLeftDistance(); }
    float getFrontDistance() const noexcept override { return parameterSet->getFrontDistance(); }
    float getBackDistance() const noexcept override { return parameterSet->getBackDistance(); }
    float getReverbGainDb() const noexcept override { return parameterSet->getReverbGainDb(); }
    float getReverbLowPassFrequency() const noexcept override {
        return parameterSet->getReverbLowPassFrequency();
    }
    float getReverbDecayPercent() const noexcept override { return parameterSet->getReverbDecayPercent(); }
    bool getFlag1() const noexcept override { return parameterSet->getFlag1(); }
    float getOutputScale() const noexcept override { return parameterSet->getOutputScale(); }
    float getOutputGainDb() const noexcept override { return parameterSet->getOutputGainDb(); }
    void setDistance(float metres, bool notify) override { parameterSet->setDistance(metres, notify); }
    void setDistanceScale(float factor, bool notify) override {
        parameterSet->setDistanceScale(factor, notify);
    }
    void setAttenuationValue(float value, bool notify) override {
        parameterSet->setAttenuationValue(value, notify);
    }
    void setFlag2(bool value, bool notify) override { parameterSet->setFlag2(value, notify); }
    void setInputLimit(float value, bool notify) override { parameterSet->setInputLimit(value, notify); }
    void setReverbGainDb(float gainDb, bool notify) override {
        parameterSet->setReverbGainDb(gainDb, notify);
    }
    void setReverbLowPassFrequency(float hertz, bool notify) override {
        parameterSet->setReverbLowPassFrequency(hertz, notify);
    }
    void setReverbDecayPercent(float percent, bool notify) override {
        parameterSet->setReverbDecayPercent(percent, notify);
    }
    void setFloorLevelDb(float levelDb, bool notify) override {
        parameterSet->setFloorLevelDb(levelDb, notify);
    }
    void setEnabled(bool value, bool notify) override { parameterSet->setEnabled(value, notify); }
    void setAzimuth(float degrees, bool notify) override { parameterSet->setAzimuth(degrees, notify); }
    void setElevation(float degrees, bool notify) override { parameterSet->setElevation(degrees, notify); }
    void setDirectGainDb(float gainDb, bool notify) override {
        parameterSet->setDirectGainDb(gainDb, notify);
    }
    void setAzimuthExponent(float exponent, bool notify) override {
        parameterSet->setAzimuthExponent(exponent, notify);
    }
    void setSpatialValue4(float value, bool notify) override {
        parameterSet->setSpatialValue4(value, notify);
    }
    void setReflectionsOn(bool value, bool notify) override { parameterSet->setReflectionsOn(value, notify); }
    void setReflectionGainDb(float gainDb, bool notify) override {
        parameterSet->setReflectionGainDb(gainDb, notify);
    }
    void setReflectionLowPassFrequency(float hertz, bool notify) override {
        parameterSet->setReflectionLowPassFrequency(hertz, notify);
    }
    void setCustomRoom(bool value, bool notify) override { parameterSet->setCustomRoom(value, notify); }
    void setCeilingDistance(float metres, bool notify) override {
        parameterSet->setCeilingDistance(metres, notify);
    }
    void setFloorDistance(float metres, bool notify) override {
        parameterSet->setFloorDistance(metres, notify);
    }
    void setRightDistance(float metres, bool notify) override {
        parameterSet->setRightDistance(metres, notify);
    }
    void setLeftDistance(float metres, bool notify) override {
        parameterSet->setLeftDistance(metres, notify);
    }
    void setFrontDistance(float metres, bool notify) override {
        parameterSet->setFrontDistance(metres, notify);
    }
    void setBackDistance(float metres, bool notify) override {
        parameterSet->setBackDistance(metres, notify);
    }
    void setFlag1(bool value, bool notify) override { parameterSet->setFlag1(value, notify); }
    void setWatchSource(bool value, bool notify) override { parameterSet->setWatchSource(value, notify); }
    void setOutputGainDb(float gainDb, bool notify) override {
        parameterSet->setOutputGainDb(gainDb, notify);
    }
    void setOutputFormat(IOutputFormat::Format format, bool notify) override {
        parameterSet->setOutputFormat(format, notify);
    }
    void setReverbOn(bool value, bool notify) override { parameterSet->setReverbOn(value, notify); }
    void setRoomType(VirtualAcoustics::Type type, bool notify) override {
        parameterSet->setRoomType(type, notify);
    }

protected:
    /// @param parameterSet borrowed, never null.
    explicit ForwardingParameterSet(orvane::IParameterSet* parameterSet) noexcept
        : parameterSet(parameterSet) {}

private:
    orvane::IParameterSet* parameterSet;
};

} // namespace orvane::kestrum::core
