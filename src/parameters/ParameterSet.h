// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/IParameterSetListener.h"
#include "parameters/OutputFormat.h"
#include "parameters/zmtl/Listeners.h"
#include "parameters/zmtl/Parameter.h"

namespace orvane {

/// The rendering values themselves, one atomic each, with the defaults that a value without a writer keeps.
///
/// Units   metres, degrees, hertz, decibels, percent as the names say.
/// Thread  see IParameterSet.
/// Source  the level law of the direct sound and the far fade are chosen by ear.
class ParameterSet final : public IParameterSetListener {
public:
    /// The snapshot behind createReloadParameterSet().
    class ReloadParameterSet final : public orvane::IReloadParameterSet {
    public:
        ReloadParameterSet(bool reverbOn, bool reflectionsOn, bool customRoom, bool watchesSource,
                           std::uint32_t roomType, std::unique_ptr<IOutputFormat> outputFormat) noexcept;

        bool hasReverb() const noexcept override { return reverbOn && roomType > 1; }
        bool reflectionsActive() const noexcept override { return reflectionsOn && roomType != 0; }
        bool watchSource() const noexcept override { return watchesSource; }
        bool roomIsDynamic() const noexcept override { return customRoom; }
        std::uint32_t roomId() const noexcept override { return roomType; }
        const IOutputFormat* getOutputFormat() const noexcept override { return outputFormat.get(); }

    private:
        bool reverbOn;
        bool reflectionsOn;
        bool customRoom;
        bool watchesSource;
        std::uint32_t roomType;
        std::unique_ptr<IOutputFormat> outputFormat;
    };

    ParameterSet();
    ParameterSet(const ParameterSet&) = delete;
    ParameterSet& operator=(const ParameterSet&) = delete;

    // Values that nothing in the rendering chain asks for; they are kept for whoever drives the set.
    bool getEnabled() const noexcept { return enabled.get(); }
    float getGeneralValue1() const noexcept { return generalValue1.get(); }
    float getGeneralValue2() const noexcept { return generalValue2.get(); }
    float getGeneralValue3() const noexcept { return generalValue3.get(); }

    // IInputParameterSet
    float getDistance() const noexcept override { return distance.get(); }
    float getDistanceScale() const noexcept override { return distanceScale.get(); }
    float getAttenuationValue() const noexcept override { return attenuationValue.get(); }
    bool getFlag2() const noexcept override { return flag2.get(); }
    float getInputLimit() const noexcept override { return inputLimit.get(); }
    void setDistance(float metres, bool notify) override { distance.set(metres, notify); }
    void setDistanceScale(float factor, bool notify) override { distanceScale.set(factor, notify); }
    void setAttenuationValue(float value, bool notify) override { attenuationValue.set(value, notify); }
    void setFlag2(bool value, bool notify) override { flag2.set(value, notify); }
    void setInputLimit(float value, bool notify) override { inputLimit.set(value, notify); }

    // ISpatialParameterSetView
    float getAzimuth() const noexcept override { return azimuth.get(); }
    float getElevation() const noexcept override { return elevation.get(); }
    float getDirectGainDb() const noexcept override { return directGainDb.get(); }
    float getSpatialValue4() const noexcept override { return spatialValue4.get(); }
    float getReflectionLowPassFrequency() const noexcept override { return reflectionLowPassFrequency.get(); }
    float getDistanceLevel() const noexcept override;
    float getFarFade() const noexcept override;
    float getAttenuationDb() const noexcept override;
    HeadRotationMatrix getHeadRotation() const noexcept override { return identityRotation; }
    float getAzimuthExponent() const noexcept override { return azimuthExponent.get(); }
    float getFloorLevelDb() const noexcept override { return floorLevelDb.get(); }
    float getReflectionGainDb() const noexcept override { return reflectionGainDb.get(); }
    float getCeilingDistance() const noexcept override { return ceilingDistance.get(); }
    float getFloorDistance() const noexcept override { return floorDistance.get(); }
    float getRightDistance() const noexcept override { return rightDistance.get(); }
    float getLeftDistance() const noexcept override { return leftDistance.get(); }
    float getFrontDistance() const noexcept override { return frontDistance.get(); }
    float getBackDistance() const noexcept override { return backDistance.get(); }

    // IReverbParameterSet, IMultichannelReverbParameterSet
    float getReverbGainDb() const noexcept override { return reverbGainDb.get(); }
    float getReverbLowPassFrequency() const noexcept override { return reverbLowPassFrequency.get(); }
    float getReverbDecayPercent() const noexcept override { return reverbDecayPercent.get(); }
    void setReverbGainDb(float gainDb, bool notify) override { reverbGainDb.set(gainDb, notify); }
    void setReverbLowPassFrequency(float hertz, bool notify) override {
        reverbLowPassFrequency.set(hertz, notify);
    }
    void setReverbDecayPercent(float percent, bool notify) override {
        reverbDecayPercent.set(percent, notify);
    }
    void setFloorLevelDb(float levelDb, bool notify) override { floorLevelDb.set(levelDb, notify); }

    // IParameterSet
    void addReloadListener(IReloadListener* listener) override;
    void removeReloadListener(IReloadListener* listener) override;
    void notifyReloadListeners() override;
    bool getFlag1() const noexcept override { return flag1.get(); }
    float getOutputScale() const noexcept override { return outputScale.get(); }
    float getOutputGainDb() const noexcept override { return outputGainDb.get(); }
    std::unique_ptr<orvane::IReloadParameterSet> createReloadParameterSet() const override;
    void setEnabled(bool value, bool notify) override { enabled.set(value, notify); }
    void setAzimuth(float degrees, bool notify) override { azimuth.set(degrees, notify); }
    void setElevation(float degrees, bool notify) override { elevation.set(degrees, notify); }
    void setDirectGainDb(float gainDb, bool notify) override { directGainDb.set(gainDb, notify); }
    void setAzimuthExponent(float exponent, bool notify) override { azimuthExponent.set(exponent, notify); }
    void setSpatialValue4(float value, bool notify) override { spatialValue4.set(value, notify); }
    void setReflectionsOn(bool value, bool notify) override { reflectionsOn.set(value, notify); }
    void setReflectionGainDb(float gainDb, bool notify) override { reflectionGainDb.set(gainDb, notify); }
    void setReflectionLowPassFrequency(float hertz, bool notify) override {
        reflectionLowPassFrequency.set(hertz, notify);
    }
    void setCustomRoom(bool value, bool notify) override { customRoom.set(value, notify); }
    void setCeilingDistance(float metres, bool notify) override { ceilingDistance.set(metres, notify); }
    void setFloorDistance(float metres, bool notify) override { floorDistance.set(metres, notify); }
    void setRightDistance(float metres, bool notify) override { rightDistance.set(metres, notify); }
    void setLeftDistance(float metres, bool notify) override { leftDistance.set(metres, notify); }
    void setFrontDistance(float metres, bool notify) override { frontDistance.set(metres, notify); }
    void setBackDistance(float metres, bool notify) override { backDistance.set(metres, notify); }
    void setFlag1(bool value, bool notify) override { flag1.set(value, notify); }
    void setWatchSource(bool value, bool notify) override { watchSource.set(value, notify); }
    void setOutputGainDb(float gainDb, bool notify) override { outputGainDb.set(gainDb, notify); }
    void setOutputFormat(IOutputFormat::Format format, bool notify) override {
        outputFormat.set(format, notify);
    }
    void setReverbOn(bool value, bool notify) override { reverbOn.set(value, notify); }
    void setRoomType(VirtualAcoustics::Type type, bool notify) override { roomType.set(type, notify); }

    // Listeners of the structural values
    void parameterChanged(zmtl::IParameter<bool>& parameter) override;
    void parameterChanged(zmtl::IParameter<float>& parameter) override;
    void parameterChanged(zmtl::IParameter<VirtualAcoustics::Type>& parameter) override;
    void parameterChanged(zmtl::IParameter<IOutputFormat::Format>& parameter) override;

private:
    /// Metres, scaled, never below 0.1.
    float effectiveDistance() const noexcept;

    zmtl::Parameter<bool> enabled{false};
    zmtl::Parameter<float> generalValue1{0.0f};
    zmtl::Parameter<float> generalValue2{0.0f};
    zmtl::Parameter<float> generalValue3{3.0f};
    zmtl::Parameter<float> azimuth{0.0f};
    zmtl::Parameter<float> elevation{0.0f};
    zmtl::Parameter<float> distance{3.0f};
    zmtl::Parameter<float> floorLevelDb{-96.0f};
    zmtl::Parameter<float> directGainDb{0.0f};
    zmtl::Parameter<float> azimuthExponent{1.0f};
    zmtl::Parameter<float> distanceScale{1.0f};
    zmtl::Parameter<float> attenuationValue{0.0f};
    zmtl::Parameter<float> spatialValue4{0.0f};
    zmtl::Parameter<VirtualAcoustics::Type> roomType{VirtualAcoustics::Type{5}};
    zmtl::Parameter<float> reverbDecayPercent{100.0f};
    zmtl::Parameter<bool> reverbOn{true};
    zmtl::Parameter<float> reverbGainDb{0.0f};
    zmtl::Parameter<float> reverbLowPassFrequency{20000.0f};
    zmtl::Parameter<bool> reflectionsOn{true};
    zmtl::Parameter<float> reflectionGainDb{0.0f};
    zmtl::Parameter<float> reflectionLowPassFrequency{20000.0f};
    zmtl::Parameter<bool> customRoom{false};
    zmtl::Parameter<float> ceilingDistance{5.5f};
    zmtl::Parameter<float> floorDistance{1.8f};
    zmtl::Parameter<float> rightDistance{11.0f};
    zmtl::Parameter<float> leftDistance{10.5f};
    zmtl::Parameter<float> frontDistance{8.5f};
    zmtl::Parameter<float> backDistance{8.0f};
    zmtl::Parameter<bool> flag1{false};
    zmtl::Parameter<bool> flag2{false};
    zmtl::Parameter<bool> watchSource{false};
    zmtl::Parameter<float> inputLimit{-1.0f};
    zmtl::Parameter<float> outputGainDb{0.0f};
    zmtl::Parameter<float> outputScale{1.0f};
    zmtl::Parameter<IOutputFormat::Format> outputFormat{IOutputFormat::Format::binaural};

    zmtl::ListenerList<IReloadListener> reloadListeners;
};

} // namespace orvane
