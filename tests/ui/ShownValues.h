// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OpenEditor.h"

#include "parameters/core/ISelectorValue.h"
#include "parameters/core/ISliderValue.h"
#include "ui/IProcessorState.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

namespace test {

/// Every widget shows what its value holds.
inline void expectWidgetsToShowTheValues(Processor& processor, OpenEditor& editor) {
    auto& state = *processor.getProcessorState();
    auto& widgets = editor.widgets();
    EXPECT_EQ(std::bit_cast<std::uint32_t>(widgets.speakerSetup.getSelectedId()),
              state.getSpeakerSetup()->getValue());
    EXPECT_EQ(std::bit_cast<std::uint32_t>(widgets.scene.getSelectedId()), state.getScene()->getValue());
    EXPECT_NEAR(widgets.ambience.getValue(), static_cast<double>(state.getAmbience()->getValue()), 0.51);
    EXPECT_NEAR(widgets.focus.getValue(), static_cast<double>(state.getFocus()->getValue()), 0.051);
    EXPECT_NEAR(widgets.headRotation.getValue(), static_cast<double>(state.getHeadRotation()->getValue()),
                0.51);
    EXPECT_NEAR(widgets.masterGain.getValue(), static_cast<double>(state.getMasterGain()->getValue()), 0.051);
}

} // namespace test
