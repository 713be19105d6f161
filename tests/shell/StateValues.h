// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "TestProcessor.h"

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>

namespace test {

struct Values {
    std::uint32_t speakerSetup = 0;
    std::uint32_t scene = 0;
    float ambience = 0;
    float focus = 0;
    float headRotation = 0;
    float masterGain = 0;

    bool operator==(const Values&) const = default;
};

inline std::ostream& operator<<(std::ostream& stream, const Values& values) {
    return stream << std::hex << values.speakerSetup << ' ' << values.scene << std::dec << ' '
                  << values.ambience << ' ' << values.focus << ' ' << values.headRotation << ' '
                  << values.masterGain;
}

inline const Values defaults{0xEDE88239, 0x1AC2A1C3, 50, 0, 0, 0};
inline const Values unusual{0x4AB55920, 0xAE828ED9, 83, -41, -179, 24};

inline Values valuesOf(Processor& processor) {
    auto& state = *processor.getProcessorState();
    return {state.getSpeakerSetup()->getValue(), state.getScene()->getValue(),
            state.getAmbience()->getValue(),     state.getFocus()->getValue(),
            state.getHeadRotation()->getValue(), state.getMasterGain()->getValue()};
}

inline void setValues(Processor& processor, const Values& values) {
    auto& state = *processor.getProcessorState();
    state.getSpeakerSetup()->setValue(values.speakerSetup);
    state.getScene()->setValue(values.scene);
    state.getAmbience()->setValue(values.ambience);
    state.getFocus()->setValue(values.focus);
    state.getHeadRotation()->setValue(values.headRotation);
    state.getMasterGain()->setValue(values.masterGain);
}

inline std::unique_ptr<Processor> processorWith(const Values& values) {
    auto processor = test::makeProcessor([] { return std::string("/nonexistent"); });
    setValues(*processor, values);
    return processor;
}

inline juce::MemoryBlock chunkOf(Processor& processor) {
    juce::MemoryBlock chunk;
    processor.getStateInformation(chunk);
    return chunk;
}

inline void load(Processor& processor, const juce::MemoryBlock& chunk) {
    processor.setStateInformation(chunk.getData(), static_cast<int>(chunk.getSize()));
}

/// The framework's binary form, byte by byte: its own writer does not survive text between tags.
inline juce::MemoryBlock chunkFrom(const std::string& xml) {
    juce::MemoryBlock chunk;
    juce::MemoryOutputStream stream(chunk, false);
    stream.writeInt(0x21324356); // "VC2!"
    stream.writeInt(static_cast<int>(xml.size()));
    stream.write(xml.c_str(), xml.size() + 1);
    return chunk;
}

} // namespace test
